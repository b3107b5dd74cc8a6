#include "base/record.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "base/library_lock.h"

namespace kavrel {
namespace {

// Counts what happens to it; `revived` is what its final-release hook stores a new reference in.
struct Log {
    std::atomic<int> hooks{0};
    std::atomic<int> deletions{0};
    bool wasLockHeld = false;
};

class Probe : public Record {
  public:
    explicit Probe(Log& log, Ref<Probe>* revived = nullptr) : log_(log), revived_(revived) {}
    ~Probe() override { ++log_.deletions; }

  protected:
    void OnFinalRelease() override {
        ++log_.hooks;
        log_.wasLockHeld = libraryLock.IsHeldByThisThread();
        if (revived_ != nullptr) *std::exchange(revived_, nullptr) = Ref<Probe>::Share(this);
    }

  private:
    Log& log_;
    Ref<Probe>* revived_;
};

// That no record is left over is checked behind every test.
struct RecordTest : testing::Test {
    Log log_;
};

TEST_F(RecordTest, LivesUntilTheLastCopyIsGone) {
    Ref<Probe> first = MakeRef<Probe>(log_);
    Ref<Probe> second = first;
    EXPECT_TRUE(first == second);
    first.Reset();
    EXPECT_FALSE(first);
    EXPECT_EQ(log_.hooks, 0);
    second = nullptr;
    EXPECT_EQ(log_.hooks, 1);
    EXPECT_EQ(log_.deletions, 1);
    EXPECT_FALSE(log_.wasLockHeld);
}

// NOLINTBEGIN(bugprone-use-after-move): a moved Ref is null
TEST_F(RecordTest, MovingKeepsOneReference) {
    Ref<Probe> first = MakeRef<Probe>(log_);
    Probe* const record = first.get();
    Ref<Probe> second = std::move(first);
    EXPECT_FALSE(first);
    Ref<Record> base = std::move(second);
    EXPECT_FALSE(second);
    EXPECT_EQ(base.get(), record);
    base.Reset();
    EXPECT_EQ(log_.deletions, 1);
}
// NOLINTEND(bugprone-use-after-move)

TEST_F(RecordTest, AssigningReleasesWhatWasHeld) {
    Log other;
    Ref<Probe> ref = MakeRef<Probe>(log_);
    ref = MakeRef<Probe>(other);
    EXPECT_EQ(log_.deletions, 1);
    const Ref<Probe>& self = ref;
    ref = self;
    EXPECT_EQ(other.deletions, 0);
    ref.Reset();
    EXPECT_EQ(other.deletions, 1);
}

TEST_F(RecordTest, TheHookMayKeepTheRecordAlive) {
    Ref<Probe> revived;
    MakeRef<Probe>(log_, &revived).Reset();
    ASSERT_TRUE(revived);
    EXPECT_EQ(log_.hooks, 1);
    EXPECT_EQ(log_.deletions, 0);
    revived.Reset();
    EXPECT_EQ(log_.hooks, 2);
    EXPECT_EQ(log_.deletions, 1);
}

TEST_F(RecordTest, SerialNumbersDiffer) {
    const Ref<Probe> first = MakeRef<Probe>(log_);
    const Ref<Probe> second = MakeRef<Probe>(log_);
    EXPECT_NE(first->serialNumber(), second->serialNumber());
}

TEST_F(RecordTest, LiveCountCountsRecords) {
    const std::int32_t before = Record::LiveCount();
    const Ref<Probe> first = MakeRef<Probe>(log_);
    const Ref<Record> copy = first;
    const Ref<Probe> second = TryMakeRef<Probe>(log_);
    EXPECT_EQ(Record::LiveCount(), before + 2);
}

TEST_F(RecordTest, ThreadsMayShareOne) {
    Ref<Probe> shared = MakeRef<Probe>(log_);
    std::vector<std::thread> threads(4);
    for (std::thread& thread : threads) {
        // Each thread starts with a reference of its own, and the last to end drops the last.
        thread = std::thread([own = shared]() mutable {
            for (int round = 0; round < 5000; ++round) {
                Ref<Probe> copy = own;
                Ref<Probe> another = copy;
                own = std::move(another);
            }
        });
    }
    shared.Reset();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(log_.hooks, 1);
    EXPECT_EQ(log_.deletions, 1);
}

}  // namespace
}  // namespace kavrel
