#include "platform/DefinitionStore.h"

#include <gtest/gtest.h>

#include <memory>

namespace zerbin {
namespace {

TEST(DefinitionStore, TypeNamesAreComparedExactly) {
    auto store = DefinitionCache().Store();
    auto doc = std::make_shared<const pugi::xml_document>();
    auto icon = std::make_shared<const Picture>(Picture{{1, 2, 3}, "StoreTest_Fan.ico"});
    store->AddDocument(doc, "StoreTest_Fan");
    store->AddIcon(icon, "StoreTest_Fan");
    EXPECT_EQ(store->FindDocument("storetest_fan"), nullptr);
    EXPECT_EQ(store->FindDocument("StoreTest_Fan "), nullptr);
    EXPECT_EQ(store->FindIcon("StoreTest_Fan"), icon);
    EXPECT_EQ(store->FindIcon("StoreTest_Pump_Unknown"), nullptr);

    auto replacement = std::make_shared<const pugi::xml_document>();
    store->AddDocument(replacement, "StoreTest_Fan");
    EXPECT_EQ(store->FindDocument("StoreTest_Fan"), replacement);
}

// What was derived from a document goes with it, and what was derived from a document since
// replaced is not taken for the new one's.
TEST(DefinitionStore, DerivedFactsFollowTheStoredDocument) {
    DefinitionStore store;
    auto first = std::make_shared<const pugi::xml_document>();
    auto second = std::make_shared<const pugi::xml_document>();
    store.AddDocument(first, "Fan");
    store.SetDerived("Fan", first.get(), std::make_shared<DefinitionStore::Derived>());
    EXPECT_NE(store.FindEntry("Fan")->derived, nullptr);

    store.AddDocument(second, "Fan");
    EXPECT_EQ(store.FindEntry("Fan")->derived, nullptr);
    store.SetDerived("Fan", first.get(), std::make_shared<DefinitionStore::Derived>());
    EXPECT_EQ(store.FindEntry("Fan")->derived, nullptr);
    EXPECT_EQ(store.FindEntry("Pump"), nullptr);
}

}  // namespace
}  // namespace zerbin
