#include "serial/worker_thread.h"

#include <gtest/gtest.h>

#include <atomic>

#include "base/byte_block.h"
#include "platform/host/thread_failure.h"

namespace kavrel {
namespace {

class Owner final : public ThreadOwner {
  public:
    void ThreadBody(WorkerThread& thread, Record* argument) override {
        ++runs;
        serialNumber = thread.serialNumber();
        seenArgument = argument;
        started->Signal();
        release->Wait(kWaitForever);
    }

    std::atomic<int> runs{0};
    std::atomic<std::uint32_t> serialNumber{0};
    std::atomic<Record*> seenArgument{nullptr};
    Ref<Event> started = MakeRef<Event>();
    Ref<Event> release = MakeRef<Event>();
};

TEST(WorkerThread, RunsItsOwnersBodyUntilStopped) {
    const std::int32_t alive = Record::LiveCount();
    {
        Owner owner;
        const Ref<WorkerThread> thread = MakeRef<WorkerThread>("worker");
        EXPECT_FALSE(thread->IsRunning());
        for (int round = 1; round <= 3; ++round) {
            owner.release->Reset();
            owner.started->Reset();
            Ref<ByteBlock> argument = MakeRef<ByteBlock>(std::vector<std::uint8_t>{1});
            Record* const expected = argument.get();
            thread->Start(owner, std::move(argument));
            EXPECT_TRUE(thread->IsRunning());
            ASSERT_TRUE(owner.started->Wait(kWaitForever));
            thread->Start(owner, nullptr);  // one is there: nothing happens

            owner.release->Signal();
            thread->Stop();
            EXPECT_FALSE(thread->IsRunning());
            EXPECT_EQ(owner.runs, round);
            EXPECT_EQ(owner.serialNumber, thread->serialNumber());
            EXPECT_EQ(owner.seenArgument, expected);
        }
        thread->Stop();
        EXPECT_FALSE(thread->error().IsSet());
    }
    EXPECT_EQ(Record::LiveCount(), alive);
}

TEST(WorkerThread, WaitsForTheBodyNoLongerThanAsked) {
    // Kept for ever: nobody can tell when the thread that was given up has ended.
    const std::int32_t liveBefore = Record::LiveCount();
    static Owner& owner = *new Owner;
    static const Ref<WorkerThread>& thread = *new Ref(MakeRef<WorkerThread>("worker"));
    thread->SetStopTimeout(10);
    thread->Start(owner, nullptr);
    owner.started->Wait(kWaitForever);
    thread->Stop();
    EXPECT_FALSE(thread->IsRunning());
    RecordProperty("records kept", Record::LiveCount() - liveBefore);
    owner.release->Signal();
}

TEST(WorkerThread, SaysWhyItCouldNotStart) {
    Owner owner;
    const Ref<WorkerThread> thread = MakeRef<WorkerThread>("worker");
    FailThreadStart(1, 8);
    thread->Start(owner, nullptr);
    EXPECT_FALSE(thread->IsRunning());
    EXPECT_EQ(thread->error().code(), 8u);
    EXPECT_EQ(thread->error().text(), "Could not create thread");

    owner.release->Signal();
    thread->Start(owner, nullptr);
    EXPECT_FALSE(thread->error().IsSet());
    EXPECT_TRUE(thread->IsRunning());
    thread->Stop();
    EXPECT_EQ(owner.runs, 1);
}

}  // namespace
}  // namespace kavrel
