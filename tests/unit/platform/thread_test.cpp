#include "platform/thread.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "base/library_lock.h"
#include "platform/event.h"
#include "platform/lock.h"

namespace kavrel {
namespace {

struct Job {
    Ref<Event> started = MakeRef<Event>();
    Ref<Event> release = MakeRef<Event>();
    Ref<Event> ended = MakeRef<Event>();
    std::thread::id id;
};

void RunJob(void* argument) {
    Job& job = *static_cast<Job*>(argument);
    job.id = std::this_thread::get_id();
    job.started->Signal();
    job.release->Wait(kWaitForever);
    // The thread's own reference outlives the job that the other thread may be destroying.
    const Ref<Event> ended = job.ended;
    ended->Signal();
}

TEST(Thread, RunsItsEntryBesideTheStarter) {
    Job job;
    Thread thread;
    EXPECT_FALSE(thread.IsStarted());
    ASSERT_EQ(thread.Start(RunJob, &job, "a name longer than some platforms take"), 0u);
    EXPECT_TRUE(thread.IsStarted());
    job.started->Wait(kWaitForever);
    EXPECT_NE(job.id, std::this_thread::get_id());
    EXPECT_FALSE(job.ended->Wait(0));
    job.release->Signal();
    EXPECT_TRUE(job.ended->Wait(kWaitForever));
}

TEST(Thread, RunsOnWhenItsHandleIsClosed) {
    Thread thread;
    for (int i = 0; i < 3; ++i) {
        Job job;
        ASSERT_EQ(thread.Start(RunJob, &job, "job"), 0u);
        thread.Close();
        EXPECT_FALSE(thread.IsStarted());
        thread.Close();
        job.release->Signal();
        EXPECT_TRUE(job.ended->Wait(kWaitForever));
    }
}

// Adds in a way that loses counts, and that a thread sanitizer sees, unless the lock holds.
template <typename Scope>
int CountFromThreads(Scope makeScope) {
    constexpr int kRounds = 5000;
    int count = 0;
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < kRounds; ++i)
                makeScope([&] { ++count; });
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    return count - 4 * kRounds;
}

TEST(Lock, LetsInOneThreadAsOftenAsItLikes) {
    Lock lock;
    EXPECT_EQ(CountFromThreads([&](auto work) KAVREL_THREAD_ANNOTATION(no_thread_safety_analysis) {
                  lock.Acquire();
                  lock.Acquire();
                  work();
                  lock.Release();
                  lock.Release();
              }),
              0);
}

TEST(LibraryLock, LetsInOneThreadAtATime) {
    libraryLock.Create();
    libraryLock.Create();
    EXPECT_EQ(CountFromThreads([](auto work) {
                  const LibraryLockScope scope;
                  work();
              }),
              0);
}

TEST(LibraryLock, KnowsItsHolder) {
    EXPECT_FALSE(libraryLock.IsHeldByThisThread());
    {
        const LibraryLockScope scope;
        EXPECT_TRUE(libraryLock.IsHeldByThisThread());
        std::thread([] { EXPECT_FALSE(libraryLock.IsHeldByThisThread()); }).join();
    }
    EXPECT_FALSE(libraryLock.IsHeldByThisThread());
}

}  // namespace
}  // namespace kavrel
