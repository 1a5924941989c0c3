// Stand-ins for an attribute and the collection of them, for tests of what writes to an
// attribute from outside (an input handing over a length) without the real attribute model.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/KeyedCollection.h"
#include "interfaces/IAppObject.h"
#include "interfaces/IAttribute.h"

namespace zerbin::testing {

// Answers its name and value; every other read answers nothing.
struct FakeAttribute : IAttribute {
    explicit FakeAttribute(std::string attributeName = {}) : name(std::move(attributeName)) {}

    std::shared_ptr<IAppObject> IAttribute_Parent() override { return nullptr; }
    bool IAttribute_Visible() override { return true; }
    void IAttribute_SetValue() override {}
    bool IAttribute_IsUnit() override { return false; }
    std::string IAttribute_Description() override { return {}; }
    std::string IAttribute_Value() override { return value; }
    std::string IAttribute_DispValue() override { return value; }
    std::string IAttribute_DispMin() override { return {}; }
    std::string IAttribute_DispMax() override { return {}; }
    std::string IAttribute_DispDefault() override { return {}; }
    void IAttribute_Value(std::string Text) override {
        writes.push_back(Text);
        value = std::move(Text);
    }
    std::string IAttribute_Name() override { return name; }
    int32_t IAttribute_NodeType() override { return 9; }
    std::string IAttribute_GlobalKey() override { return {}; }
    std::shared_ptr<ISNVType> IAttribute_SNVTType() override { return nullptr; }
    void IAttribute_BackToDefault() override { IAttribute_Value({}); }
    std::string IAttribute_DefaultValue() override { return {}; }
    std::string IAttribute_Tag() override { return {}; }
    void IAttribute_Tag(std::string) override {}
    std::shared_ptr<IFields> IAttribute_Fields() override { return nullptr; }
    void IAttribute_CallBack(std::shared_ptr<IcbkAppObject>) override {}
    int32_t IAttribute_CDBPosition() override { return 0; }
    bool IAttribute_ToolOnly() override { return false; }
    bool IAttribute_IsDeviceDependent() override { return false; }
    bool IAttribute_IsUnitDependent() override { return false; }
    std::string IAttribute_DeviceKey() override { return {}; }
    bool IAttribute_IsKeepFloatStandard() override { return false; }
    int32_t IAttribute_DividedBy() override { return 1; }
    bool IAttribute_IsType() override { return false; }
    std::string IAttribute_Min() override { return {}; }
    std::string IAttribute_Max() override { return {}; }
    std::string IAttribute_ExtendedKey() override { return {}; }
    bool IAttribute_IsMacroConnected() override { return false; }

    std::string name;
    std::string value;
    std::vector<std::string> writes;  // every text written through IAttribute_Value
};

// Looks members up as the real collection does: by key without regard to case, then by
// LeadingNumber of the key as a 1-based position, else nullptr.
struct FakeAttributes : IAttributes {
    // Adds a FakeAttribute under its name and returns it.
    std::shared_ptr<FakeAttribute> Add(const std::string& attributeName) {
        auto attribute = std::make_shared<FakeAttribute>(attributeName);
        items.Add(attributeName, attribute);
        return attribute;
    }

    int32_t IAttributes_Count() override { return items.Count(); }
    std::shared_ptr<IAttribute> IAttributes_Item(const std::string& Key) override {
        return items.Item(Key);
    }
    std::vector<std::shared_ptr<IAttribute>> IAttributes_NewEnum() override {
        return {items.Items().begin(), items.Items().end()};
    }
    std::string IAttributes_GlobalKey() override { return {}; }
    std::string IAttributes_ExtendedKey() override { return {}; }

    KeyedCollection<FakeAttribute> items;
};

}  // namespace zerbin::testing
