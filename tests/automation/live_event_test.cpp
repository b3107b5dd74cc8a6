// Events of the port: on the thread that made the parser, in order, none lost, and whatever a
// client does meanwhile.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <string>
#include <thread>
#include <vector>

#include "automation/support/live_test.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

std::string Numbered(int first, int count) {
    std::string text;
    for (int i = first; i < first + count; ++i)
        text += NumberedLine(i);
    return text;
}

// Listens, and checks that sentences with the numbers 0, 1, 2... arrive on the thread that made
// this.
class NumberCheck {
  public:
    explicit NumberCheck(IDispatch* parser) : listener_(parser) {
        listener_->SetReaction([this](const RecordedEvent& event) {
            if (event.id == kGeneric) {
                EXPECT_EQ(NumberedLine(count_++), Narrow(event.text) + "\r\n");
                EXPECT_EQ(thread_, GetCurrentThreadId());
            }
            listener_->Clear();
            return S_OK;
        });
    }

    int count() const { return count_; }
    void ExpectToReach(int count) const {
        DispatchUntil([&] { return count_ >= count; }, 60000);
        EXPECT_EQ(count, count_);
    }

  private:
    const DWORD thread_ = GetCurrentThreadId();
    int count_ = 0;
    const Listener listener_;
};

using LiveEventTest = LiveTest;

// What waits for the client is not limited by the speed of the port.
TEST_F(LiveEventTest, NoneIsLostWhileNothingIsDispatchedAndAtFullSpeed) {
    TestPort port;
    const NumberCheck check(parser());
    Enable(port);
    port.Feed(Numbered(0, 3000));
    EXPECT_EQ(0, check.count());
    check.ExpectToReach(3000);
    port.StartStream(Numbered(3000, 20000), 600000);
    check.ExpectToReach(23000);
}

// A thread's messages stay with it: each client thread gets its own parser's events.
TEST_F(LiveEventTest, EachThreadGetsTheEventsOfItsParser) {
    std::array<TestPort, 3> ports;
    std::vector<std::thread> threads;
    for (TestPort& port : ports) {
        threads.emplace_back([&port] {
            CoInitialize(nullptr);
            {
                // Not by name, which gives a proxy of an object on the first thread.
                const ComPtr<IDispatch> parser = CreateDirectly(CreatableClasses()[0].classId);
                const NumberCheck check(parser.Get());
                EnablePort(parser.Get(), port);
                port.StartStream(Numbered(0, 300), 600000);
                check.ExpectToReach(300);
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

// A client may end it all, or only the reading, or begin it anew inside of any event.
TEST_F(LiveEventTest, ReleasedDisabledOrEnabledAgainByAnEvent) {
    enum { kReleasing, kDisabling, kEnablingAgain };
    for (const DISPID id : {kOnComStatus, kGga, kOnGpsFix, kGeneric}) {
        for (const int kind : {kReleasing, kDisabling, kEnablingAgain}) {
            SCOPED_TRACE(std::to_string(id) + ", " + std::to_string(kind));
            TestPort port;
            parser_ = CreateParser();
            Listener listener(parser());
            int count = 0;
            listener->SetReaction([&](const RecordedEvent& event) {
                if (event.id != id || ++count > 3) return S_OK;
                if (kind == kReleasing) {
                    listener.Disconnect();
                    parser_.Reset();
                } else {
                    Disable();
                    if (kind == kEnablingAgain) Enable(port);
                }
                return S_OK;
            });
            Enable(port);
            port.StartStream(kGgaLine, 0);
            EXPECT_TRUE(DispatchUntil([&] { return count > (kind == kEnablingAgain ? 2 : 0); }));
            if (kind == kEnablingAgain) Disable();
            EXPECT_EQ(0U, port.ErrorOfOpening());
            DispatchFor(20);
            if (kind != kReleasing) continue;
            EXPECT_EQ(1, count);
            listener->Clear();
            EXPECT_EQ(S_OK, CanUnloadNow());
        }
    }
}

std::vector<HWND> HiddenWindows() {
    std::vector<HWND> windows;
    const auto add = [](HWND window, LPARAM list) CALLBACK -> BOOL {
        wchar_t title[32] = L"";
        GetWindowTextW(window, title, 32);
        if (std::wstring(title) == L"kvFormSync")
            reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
        return TRUE;
    };
    EnumThreadWindows(GetCurrentThreadId(), add, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

TEST_F(LiveEventTest, OneHiddenWindowEachOfOneClass) {
    ComPtr<IDispatch> second = CreateParser();
    const std::vector<HWND> windows = HiddenWindows();
    ASSERT_EQ(2U, windows.size());
    EXPECT_EQ(GetClassLongPtrW(windows[0], GCW_ATOM), GetClassLongPtrW(windows[1], GCW_ATOM));
    wchar_t name[64] = L"";
    EXPECT_EQ(36, GetClassNameW(windows[0], name, 64));
    EXPECT_FALSE(IsWindowVisible(windows[0]));
    EXPECT_EQ(0, GetWindowLongW(windows[0], GWL_EXSTYLE));
    RECT place;
    GetWindowRect(windows[0], &place);
    EXPECT_EQ(100, place.right - place.left);
    EXPECT_EQ(100, place.bottom - place.top);
    // A window goes on its own thread, whoever released the parser.
    std::thread([&second] { second.Reset(); }).join();
    DispatchFor(20);
    EXPECT_EQ(1U, HiddenWindows().size());
    parser_.Reset();
    EXPECT_EQ(0U, HiddenWindows().size());
}

// Messages that nothing waits for, and ones that another window was sent, mean nothing.
TEST_F(LiveEventTest, StrayMessagesAreIgnored) {
    TestPort port;
    const NumberCheck check(parser());
    const ComPtr<IDispatch> second = CreateParser();
    const Listener other(second.Get());
    Enable(port);
    // All of them are handled before keys are given: later they might be meant.
    const auto flood = [] {
        for (HWND window : HiddenWindows()) {
            for (LPARAM key = -2; key < 300; ++key)
                PostMessageW(window, WM_USER + 101, 0, key);
        }
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    };
    flood();
    EXPECT_EQ(0, check.count());
    port.Feed(Numbered(0, 100));
    check.ExpectToReach(100);
    flood();
    EXPECT_EQ(100, check.count());
    EXPECT_EQ(0U, other->events().size());
}

}  // namespace

}  // namespace kavrel::tests
