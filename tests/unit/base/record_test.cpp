#include "base/record.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

#include "base/byte_block.h"
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

    void Renumber(std::uint32_t number) { OverwriteSerialNumber(number); }

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

class DerivedProbe final : public Probe {
    using Probe::Probe;
};

class RecordTest : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(Record::LiveCount(), liveBefore_); }

    Log log_;

  private:
    std::int32_t liveBefore_ = Record::LiveCount();
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

TEST_F(RecordTest, MovingKeepsOneReference) {
    Ref<Probe> first = MakeRef<Probe>(log_);
    Probe* const record = first.get();
    Ref<Probe> second = std::move(first);
    EXPECT_EQ(first.get(), nullptr);  // NOLINT(bugprone-use-after-move): a moved Ref is null
    EXPECT_EQ(second.get(), record);
    first = std::move(second);
    EXPECT_EQ(first.get(), record);
    first.Reset();
    EXPECT_EQ(log_.deletions, 1);
}

TEST_F(RecordTest, AssigningReleasesWhatWasHeld) {
    Log other;
    Ref<Probe> ref = MakeRef<Probe>(log_);
    ref = MakeRef<Probe>(other);
    EXPECT_EQ(log_.deletions, 1);
    EXPECT_EQ(other.deletions, 0);

    const Ref<Probe>& self = ref;
    ref = self;
    EXPECT_EQ(other.deletions, 0);
    ref.Reset();
    EXPECT_EQ(other.deletions, 1);
}

TEST_F(RecordTest, ConvertsToItsBase) {
    Ref<DerivedProbe> derived = MakeRef<DerivedProbe>(log_);
    const Ref<Probe> shared = derived;
    EXPECT_EQ(shared.get(), derived.get());
    const Ref<Record> moved = std::move(derived);
    EXPECT_EQ(derived.get(), nullptr);  // NOLINT(bugprone-use-after-move): a moved Ref is null
    EXPECT_EQ(moved.get(), shared.get());
}

TEST_F(RecordTest, DetachAdoptAndShare) {
    Probe* const raw = MakeRef<Probe>(log_).Detach();
    EXPECT_EQ(log_.hooks, 0);
    Ref<Probe> owner = Ref<Probe>::Adopt(raw);
    Ref<Probe> shared = Ref<Probe>::Share(raw);
    owner.Reset();
    EXPECT_EQ(log_.hooks, 0);
    shared.Reset();
    EXPECT_EQ(log_.deletions, 1);
}

TEST_F(RecordTest, NullReferencesDoNothing) {
    Ref<Probe> null;
    Ref<Probe> copy = null;
    copy.Reset();
    copy = nullptr;
    EXPECT_FALSE(Ref<Probe>::Share(nullptr));
    EXPECT_FALSE(Ref<Probe>::Adopt(nullptr));
    EXPECT_TRUE(copy == null);
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
    second->Renumber(17);
    EXPECT_EQ(second->serialNumber(), 17u);
}

TEST_F(RecordTest, LiveCountCountsRecords) {
    const std::int32_t before = Record::LiveCount();
    const Ref<Probe> first = MakeRef<Probe>(log_);
    const Ref<Probe> copy = first;
    const Ref<ByteBlock> second = TryMakeRef<ByteBlock>(std::vector<std::uint8_t>{1, 2, 3});
    EXPECT_EQ(second->bytes().size(), 3u);
    EXPECT_EQ(Record::LiveCount(), before + 2);
}

TEST_F(RecordTest, ThreadsMayShareOne) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 5000;
    {
        Ref<Probe> shared = MakeRef<Probe>(log_);
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            // Each thread starts with a reference of its own, and the last to end drops the last.
            threads.emplace_back([own = shared]() mutable {
                for (int round = 0; round < kRounds; ++round) {
                    Ref<Probe> copy = own;
                    Ref<Probe> another = copy;
                    own = std::move(another);
                }
            });
        }
        shared.Reset();
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(log_.hooks, 1);
    EXPECT_EQ(log_.deletions, 1);
}

}  // namespace
}  // namespace kavrel
