#include "platform/lock.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include "base/library_lock.h"

namespace kavrel {
namespace {

// Adds in a way that loses counts, and that a thread sanitizer sees, unless the lock holds.
template <typename Scope>
void ExpectAllCounted(Scope makeScope) {
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
    EXPECT_EQ(count, 4 * kRounds);
}

TEST(Lock, LetsInOneThreadAsOftenAsItLikes) {
    Lock lock;
    ExpectAllCounted([&](auto work) KAVREL_THREAD_ANNOTATION(no_thread_safety_analysis) {
        lock.Acquire();
        lock.Acquire();
        work();
        lock.Release();
        lock.Release();
    });
}

TEST(LibraryLock, LetsInOneThreadAtATimeAndKnowsIt) {
    libraryLock.Create();
    libraryLock.Create();
    ExpectAllCounted([](auto work) {
        EXPECT_FALSE(libraryLock.IsHeldByThisThread());
        const LibraryLockScope scope;
        EXPECT_TRUE(libraryLock.IsHeldByThisThread());
        work();
    });
}

}  // namespace
}  // namespace kavrel
