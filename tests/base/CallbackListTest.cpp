#include "base/CallbackList.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zerbin {
namespace {

struct Listener {
    std::vector<std::string>* log;
    std::string name;
    void Heard(const std::string& what) { log->push_back(name + ":" + what); }
};

TEST(CallbackList, ServesListenersInOrderOfRegistrationDuplicatesIncluded) {
    std::vector<std::string> log;
    auto first = std::make_shared<Listener>(Listener{&log, "first"});
    auto second = std::make_shared<Listener>(Listener{&log, "second"});
    CallbackList<Listener> list;
    list.Add(first);
    list.Add(second);
    list.Add(first);
    list.Raise([](Listener& l) { l.Heard("x"); });
    EXPECT_EQ(log, (std::vector<std::string>{"first:x", "second:x", "first:x"}));
    EXPECT_EQ(list.size(), 3U);
}

TEST(CallbackList, AListenerMayRegisterAnotherWhileBeingServed) {
    std::vector<std::string> log;
    CallbackList<Listener> list;
    auto late = std::make_shared<Listener>(Listener{&log, "late"});
    list.Add(std::make_shared<Listener>(Listener{&log, "early"}));
    list.Raise([&](Listener& l) {
        l.Heard("1");
        for (int i = 0; i < 100; ++i) {  // enough to make the list reallocate
            list.Add(late);
        }
    });
    EXPECT_EQ(log, (std::vector<std::string>{"early:1"}));
    EXPECT_EQ(list.size(), 101U);
    list.Clear();
    EXPECT_EQ(list.size(), 0U);
}

}  // namespace
}  // namespace zerbin
