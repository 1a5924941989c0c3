// Running out of memory at any allocation: creation, load and save are run again and again,
// the Nth allocation failing in the Nth run, until a run gets through. Every failed run must end
// in std::bad_alloc (never in a block that quietly lacks a member), leave the objects it did not
// finish usable and destroyable, and the run that gets through must give what an undisturbed
// run gives. This executable replaces the global operator new for that; the sanitizer build
// checks that nothing leaks or is read after a failure. The XML documents allocate through
// pugixml's own functions, which are left alone: their nodes are not failed here.

#include <functional>
#include <new>

#include "base/KeyedCollection.h"
#include "base/ProcessState.h"
#include "tests/support/Blocks.h"
#include "tests/support/RandomBlock.h"

namespace {

// Allocations left before the one that fails; negative: none fails.
long gAllocationsLeft = -1;

}  // namespace

void* operator new(std::size_t size) {
    if (gAllocationsLeft >= 0 && gAllocationsLeft-- == 0) {
        throw std::bad_alloc();
    }
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}

// The other forms must come from the same heap: the standard library pairs the nothrow and
// array news with the plain deletes (std::stable_sort's buffer is one).
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return ::operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size) {
    return ::operator new(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return ::operator new(size, std::nothrow);
}

void operator delete(void* p) noexcept {
    std::free(p);
}

void operator delete(void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}

void operator delete[](void* p) noexcept {
    std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}

void operator delete[](void* p, const std::nothrow_t&) noexcept {
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

namespace zerbin::testing {
namespace {

// Runs step with the Nth allocation failing, N = 0, 1, 2, ..., until it gets through; after
// each failed run, check looks at what it left. The number of runs that failed.
long FailEachAllocation(
    const std::function<void()>& step, const std::function<void()>& check = [] {}) {
    for (long n = 0;; ++n) {
        gAllocationsLeft = n;
        bool done = false;
        try {
            step();
            done = true;
        } catch (const std::bad_alloc&) {
        }
        gAllocationsLeft = -1;
        if (done) {
            return n;
        }
        check();
    }
}

struct QuietSink : MessageSink {
    int Show(const Message&) override { return kMessageOk; }
};

TEST(AllocationFailureTest, AFailedAddLeavesTheCollectionAsItWas) {
    KeyedCollection<int> items;
    const long failures = FailEachAllocation([&] { items.Add("Key", std::make_shared<int>(1)); },
                                             [&] {
                                                 EXPECT_FALSE(items.Contains("Key"));
                                                 EXPECT_EQ(items.Count(), 0);
                                                 EXPECT_EQ(items.Item("Key"), nullptr);
                                             });
    EXPECT_GT(failures, 0);
    EXPECT_EQ(*items.Item("KEY"), 1);
}

class AllocationFailureBlockTest : public ::testing::TestWithParam<std::string> {
protected:
    // Cold: the definition is parsed in every run, as for the first block of its type.
    void StartCold() {
        ProcessState::Reset();
        SetSnvtDictionary(ShippedDictionary());
        UseLibrary(DataDir() / "library");
        SetMessageSink(std::make_shared<QuietSink>());
    }

    void TearDown() override { ProcessState::Reset(); }
};

TEST_P(AllocationFailureBlockTest, CreateLoadAndSaveSurviveEveryFailedAllocation) {
    const std::string type = GetParam();
    StartCold();
    RandomValues random(7);
    const auto model = NewBlock(type, Shipped());
    Randomize(*model, random);
    const Snapshot expected = Take(*model);
    const SavedBlock saved = Save(*model);

    std::shared_ptr<CDBAppObject> created;
    const long creationFailures = FailEachAllocation([&] {
        StartCold();
        created = NewBlock(type, Shipped());
    });
    // Every allocation of a creation failed once: there are hundreds.
    EXPECT_GT(creationFailures, 100);
    created->IAppObject_XmlLoad(saved.Element());
    EXPECT_EQ(Take(*created), expected);
    created->IAppObject_Destroy();

    std::shared_ptr<CDBAppObject> loaded = NewBlock(type, Shipped());
    const long loadFailures =
        FailEachAllocation([&] { loaded->IAppObject_XmlLoad(saved.Element()); },
                           [&] {
                               loaded->IAppObject_Destroy();
                               loaded = NewBlock(type, Shipped());
                           });
    EXPECT_GT(loadFailures, 0);
    EXPECT_EQ(Take(*loaded), expected);

    SavedBlock again;
    const long saveFailures = FailEachAllocation([&] { again = Save(*loaded); });
    EXPECT_GT(saveFailures, 0);
    EXPECT_EQ(XmlText(again.Element()), XmlText(saved.Element()));
    EXPECT_EQ(Take(*loaded), expected);
    loaded->IAppObject_Destroy();
    model->IAppObject_Destroy();
}

// Three types: one with every member kind, one with structured values, one with a type choice.
INSTANTIATE_TEST_SUITE_P(ShippedTypes, AllocationFailureBlockTest,
                         ::testing::Values("THERMOSTAT", "WEEKLY_SCHEDULE", "TYPE_MUX"));

}  // namespace
}  // namespace zerbin::testing
