#include "base/CopyOnWrite.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zerbin {
namespace {

TEST(CopyOnWrite, AWriteReachesNoValueAnotherHolderSees) {
    CopyOnWrite<std::string> first;
    EXPECT_TRUE(first.IsDefault());
    first.Write() = "one";
    EXPECT_FALSE(first.IsDefault());
    EXPECT_EQ(*CopyOnWrite<std::string>(), "") << "the shared default stays as made";

    CopyOnWrite<std::string> second = first;
    second.Write() = "two";
    EXPECT_EQ(*first, "one");
    EXPECT_EQ(*second, "two");

    // Alone with a value it made, a holder writes in place.
    const std::string* own = &*first;
    first.Write() += "!";
    EXPECT_EQ(&*first, own);
    EXPECT_EQ(*first, "one!");

    // A value shared in from outside is copied at the first write, even with no other holder.
    auto outside = std::make_shared<const std::string>("kept");
    CopyOnWrite<std::string> third;
    third.Share(outside);
    outside.reset();
    const std::string* shared = &*third;
    third.Write() = "changed";
    EXPECT_NE(&*third, shared);
    EXPECT_EQ(*third, "changed");

    // A value set is the holder's own: the next write needs no copy.
    CopyOnWrite<std::string> fourth = third;
    fourth.Set("set");
    const std::string* set = &*fourth;
    fourth.Write() += "!";
    EXPECT_EQ(&*fourth, set);
    EXPECT_EQ(*third, "changed");
}

}  // namespace
}  // namespace zerbin
