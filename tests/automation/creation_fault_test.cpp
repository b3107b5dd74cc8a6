// Memory and events that run out while an object is made: the client is told, and nothing is left
// over, which is counted.
#include <gtest/gtest.h>
#include <windows.h>

#include "KavrelCE_h.h"
#include "automation/support/failing_import.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/resources.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// Makes the nth allocation of the DLL fail, for a scope. Its convention is not the platform's.
class FailingAllocation {
  public:
    FailingAllocation(LONG nth, Failing failing) : countdown_(nth, failing) { current_ = this; }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    bool HasFailed() const { return countdown_.HasStruck(); }

  private:
    static void* Replacement(size_t size) {
        return current_->countdown_.Strikes() ? nullptr : current_->hook_.original()(size);
    }

    static inline FailingAllocation* current_ = nullptr;

    Countdown countdown_;
    ImportHook<void*(size_t)> hook_{"malloc", &Replacement};
};

struct FailingEvent : FailingImport<decltype(CreateEventW)> {
    FailingEvent(LONG nth, Failing failing)
        : FailingImport("CreateEventW", nth, nullptr, failing) {}
};

// Counts that miss something would never find its leak. The system may take more meanwhile.
TEST(ResourcesTest, AreCounted) {
    (void)Resources::Now();
    const Resources before = Resources::Now();
    BSTR text = SysAllocStringLen(nullptr, 1000);
    HANDLE thread = CreateThread(
        nullptr, 0, [](void*) WINAPI -> DWORD { return 0; }, nullptr, CREATE_SUSPENDED, nullptr);
    const Resources after = Resources::Now();
    EXPECT_LE(before.heapBlocks + 1, after.heapBlocks);
    EXPECT_LE(before.heapBytes + 2000, after.heapBytes);
    EXPECT_LE(before.threads + 1, after.threads);
    EXPECT_LE(before.handles + 1, after.handles);
    ResumeThread(thread);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    SysFreeString(text);
}

// Class objects are made once, so this comes before everything that needs one.
TEST(ClassObjectFaultTest, ShortMemoryIsTold) {
    for (const CreatableClass& creatable : CreatableClasses()) {
        ComPtr<IClassFactory> factory;
        {
            const FailingAllocation failing(1, Failing::Once);
            EXPECT_EQ(E_OUTOFMEMORY, GetClassObjectOf(creatable.classId, IID_PPV_ARGS(&factory)));
            EXPECT_FALSE(factory);
        }
        EXPECT_EQ(S_OK, GetClassObjectOf(creatable.classId, IID_PPV_ARGS(&factory)));
    }
}

class CreationFaultTest : public AutomationTest,
                          public testing::WithParamInterface<CreatableClass> {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        ASSERT_EQ(S_OK, GetClassObjectOf(GetParam().classId, IID_PPV_ARGS(&factory_)));
        // First uses of anything stay.
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(S_OK, Create());
            Resources::Now();
        }
    }

    // An object that is there must work, and its release must give everything back.
    HRESULT Create() {
        ComPtr<IDispatch> object;
        const HRESULT result = factory_->CreateInstance(nullptr, IID_PPV_ARGS(&object));
        EXPECT_EQ(SUCCEEDED(result), object != nullptr);
        return result;
    }

    // Lets each call fail in turn. Returns how many there are.
    template <typename Fault>
    int FailEach(Failing failing) {
        int n = 0;
        for (bool hasFailed = true; hasFailed;) {
            SCOPED_TRACE(++n);
            // What a thread of the system happens to use first stays, but a leak repeats.
            Resources before;
            Resources after = Resources::Now();
            for (int i = 0; i < 3 && before != after; ++i) {
                before = after;
                hasFailed = CreateWith(Fault(n, failing));
                after = Resources::Now();
            }
            EXPECT_EQ(before, after);
            EXPECT_EQ(S_OK, CanUnloadNow());
            EXPECT_EQ(S_OK, Create()) << "after the failure";
        }
        return n - 1;
    }

    // Returns whether the fault's call was reached.
    template <typename Fault>
    bool CreateWith(const Fault& fault) {
        const HRESULT result = Create();
        const HRESULT expected = fault.HasFailed() ? E_OUTOFMEMORY : S_OK;
        // Without memory for its window a parser is like one on a machine without windows.
        EXPECT_TRUE(result == expected || (IsParser() && result == S_OK));
        return fault.HasFailed();
    }

    static bool IsParser() { return GetParam().classId == CLSID_NmeaParser; }

    ComPtr<IClassFactory> factory_;
};

INSTANTIATE_TEST_SUITE_P(All, CreationFaultTest, testing::ValuesIn(CreatableClasses()),
                         [](const auto& test) { return Narrow(test.param.name); });

TEST_P(CreationFaultTest, ShortMemoryIsTold) {
    const int count = FailEach<FailingAllocation>(Failing::Once);
    EXPECT_LE(2, count) << "a record and its object at least";
    EXPECT_EQ(count, FailEach<FailingAllocation>(Failing::FromThenOn));
}

TEST_P(CreationFaultTest, ShortEventsAreTold) {
    EXPECT_EQ(IsParser(), FailEach<FailingEvent>(Failing::Once) > 0);
    EXPECT_EQ(IsParser(), FailEach<FailingEvent>(Failing::FromThenOn) > 0);
}

}  // namespace

}  // namespace kavrel::tests
