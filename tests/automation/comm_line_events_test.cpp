// Waiting for modem lines to change. Apart from the rest, since Wine's 32-bit programs cannot.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "automation/support/test_port.h"
#include "platform/win32/comm_device.h"

namespace kavrel::tests {

namespace {

TEST(CommLineEvents, EveryLineWakesTheWaiterAndSoDoesClosing) {
    TestPort port;
    const std::unique_ptr<CommDevice> device = MakeWin32CommDevice();
    const std::wstring name = port.name();
    ASSERT_TRUE(device->Open(std::u16string(name.begin(), name.end()).c_str()));
    ASSERT_TRUE(device->SetMask(kCommLineEvents));
    const std::pair<const char*, DWORD> kCases[] = {{"CTS", EV_CTS},
                                                    {"", EV_CTS},
                                                    {"DSR", EV_DSR},
                                                    {"DSR RLSD", EV_RLSD},
                                                    {"DSR RING RLSD", EV_RING},
                                                    {"closing", DWORD{0}}};
    for (const auto& [lines, event] : kCases) {
        std::uint32_t events = 99;
        std::thread waiter([&] { (void)device->WaitEvent(events); });
        Sleep(100);
        event == 0 ? device->Close() : port.SetLines(lines);
        waiter.join();
        EXPECT_EQ(event, events) << lines;
    }
}

}  // namespace

}  // namespace kavrel::tests
