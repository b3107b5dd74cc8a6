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
        EXPECT_EQ(thread.serialNumber(), worker->serialNumber());
        EXPECT_EQ(argument, expectedArgument);
        started->Signal();
        release->Wait(kWaitForever);
    }

    std::atomic<int> runs{0};
    Record* expectedArgument = nullptr;
    Ref<Event> started = MakeRef<Event>();
    Ref<Event> release = MakeRef<Event>();
    Ref<WorkerThread> worker = MakeRef<WorkerThread>("worker");
};

TEST(WorkerThread, RunsItsOwnersBodyUntilStopped) {
    Owner owner;
    const std::int32_t live = Record::LiveCount();
    FailThreadStart(1, 11);
    owner.worker->Start(owner, nullptr);
    EXPECT_EQ(owner.worker->error().code(), 11U);
    EXPECT_FALSE(owner.worker->IsRunning());
    for (int round = 1; round <= 3; ++round) {
        owner.release->Reset();
        owner.started->Reset();
        Ref<ByteBlock> argument = MakeRef<ByteBlock>(std::vector<std::uint8_t>{1});
        owner.expectedArgument = argument.get();
        owner.worker->Start(owner, std::move(argument));
        EXPECT_TRUE(owner.worker->IsRunning());
        ASSERT_TRUE(owner.started->Wait(kWaitForever));
        owner.worker->Start(owner, nullptr);  // one is there: nothing happens

        owner.release->Signal();
        owner.worker->Stop();
        EXPECT_FALSE(owner.worker->IsRunning());
        EXPECT_EQ(owner.runs, round);
        EXPECT_EQ(Record::LiveCount(), live) << "the argument is dropped";
    }
    owner.worker->Stop();
    EXPECT_FALSE(owner.worker->error().IsSet());
}

TEST(WorkerThread, WaitsForTheBodyNoLongerThanAsked) {
    // Kept for ever: nobody can tell when the thread that was given up has ended.
    const std::int32_t liveBefore = Record::LiveCount();
    static Owner& owner = *new Owner;
    owner.worker->SetStopTimeout(10);
    owner.worker->Start(owner, nullptr);
    owner.started->Wait(kWaitForever);
    owner.worker->Stop();
    EXPECT_FALSE(owner.worker->IsRunning());
    RecordProperty("records kept", Record::LiveCount() - liveBefore);
    owner.release->Signal();
}

}  // namespace
}  // namespace kavrel
