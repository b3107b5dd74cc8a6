// Waiting for modem lines to change. Apart from the rest, since Wine's 32-bit programs cannot.
#include <gtest/gtest.h>

#include <thread>

#include "automation/support/comm_handle.h"

namespace kavrel::tests {

namespace {

struct LineCase {
    InputLines lines;
    DWORD event;
};

TEST(LineEvents, EveryLineWakesTheWaiter) {
    TestPort port;
    CommHandle comm(port.name());
    ASSERT_TRUE(SetCommMask(comm.get(), EV_CTS | EV_DSR | EV_RLSD | EV_RING));
    const LineCase cases[] = {{{.cts = true}, EV_CTS},
                              {{}, EV_CTS},
                              {{.dsr = true}, EV_DSR},
                              {{.dsr = true, .rlsd = true}, EV_RLSD},
                              {{.dsr = true, .ring = true, .rlsd = true}, EV_RING}};
    for (const LineCase& test : cases) {
        DWORD events = 0;
        BOOL isDone = FALSE;
        std::thread waiter([&] { isDone = WaitCommEvent(comm.get(), &events, nullptr); });
        Sleep(100);
        port.SetLines(test.lines);
        waiter.join();
        EXPECT_TRUE(isDone);
        EXPECT_EQ(test.event, events);
    }
}

TEST(LineEvents, ClosingEndsTheWait) {
    TestPort port;
    CommHandle comm(port.name());
    ASSERT_TRUE(SetCommMask(comm.get(), EV_CTS));
    DWORD events = 99;
    std::thread waiter([&, handle = comm.get()] { WaitCommEvent(handle, &events, nullptr); });
    Sleep(100);
    comm.Close();
    waiter.join();
    EXPECT_EQ(0U, events);
}

}  // namespace

}  // namespace kavrel::tests
