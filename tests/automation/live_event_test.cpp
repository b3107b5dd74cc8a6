// Events of the port: on the thread that made the parser, in order, none lost, and whatever a
// client does meanwhile.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "automation/support/comm_handle.h"
#include "automation/support/import_hook.h"
#include "automation/support/live_test.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr UINT kHandOverMessage = WM_USER + 101;

std::string Numbered(int first, int count) {
    std::string text;
    for (int i = first; i < first + count; ++i)
        text += NumberedLine(i);
    return text;
}

// Checks that sentences with the numbers 0, 1, 2... arrive on the thread that made this.
class NumberCheck {
  public:
    explicit NumberCheck(EventRecorder& recorder) {
        recorder.SetReaction([this, &recorder](const RecordedEvent& event) {
            if (event.id == kGeneric) Heed(event.text);
            recorder.Clear();
            return S_OK;
        });
    }
    int count() const { return next_; }
    int wrong() const { return wrong_; }

  private:
    void Heed(const std::wstring& text) {
        const std::string expected = NumberedLine(next_++);
        if (Narrow(text) + "\r\n" != expected || GetCurrentThreadId() != thread_) ++wrong_;
    }

    const DWORD thread_ = GetCurrentThreadId();
    int next_ = 0;
    int wrong_ = 0;
};

using LiveEventTest = LiveTest;

TEST_F(LiveEventTest, NoneIsLostAtFullSpeed) {
    constexpr int kCount = 100000;
    TestPort port;
    const Listener listener(parser());
    const NumberCheck check(*listener);
    Enable(port);
    const double ms = MillisecondsOf([&] {
        port.StartStream(Numbered(0, kCount), 600000);
        EXPECT_TRUE(DispatchUntil([&] { return check.count() == kCount; }, 100000));
    });
    EXPECT_EQ(0, check.wrong());
    std::printf("%d sentences in %.0f ms\n", check.count(), ms);
}

// What waits for the client is not limited by the speed of the port.
TEST_F(LiveEventTest, ASlowClientGetsThemAll) {
    constexpr int kCount = 3000;
    TestPort port;
    const Listener listener(parser());
    const NumberCheck check(*listener);
    Enable(port);
    // Nothing is dispatched meanwhile.
    port.Feed(Numbered(0, kCount));
    EXPECT_EQ(0, check.count());
    EXPECT_TRUE(DispatchUntil([&] {
        if (check.count() % 100 == 0) Sleep(1);
        return check.count() == kCount;
    }));
    EXPECT_EQ(0, check.wrong());
}

// The order within a sentence is that of Parse.
TEST_F(LiveEventTest, AllKindsArriveInTheirOrder) {
    TestPort port;
    const Listener listener(parser());
    std::string ids;
    listener->SetReaction([&](const RecordedEvent& event) {
        ids += std::to_string(event.id);
        return S_OK;
    });
    Enable(port);
    EXPECT_TRUE(DispatchUntil([&] { return ids == "9"; }));
    port.Feed(kRmcLine + kGgaLine + Line("GPGLL,4730.0000,N,00843.0000,E,120002.00,A") +
              Line("GPVTG,046.80,T,045.50,M,30.05,N,55.65,K") + Line("GPGSV,1,1,01,31,24,197,31") +
              Line("GPGSA,A,3,31,,,,,,,,,,,,1.90,1.10,1.60") + NumberedLine(1));
    // NMEA seen; RMC with the first valid fix; GGA; GLL; VTG; GSV; GSA with new flags; Generic.
    const std::string expected =
        "9"
        "9"
        "49671"
        "261"
        "361"
        "71"
        "51"
        "851"
        "1";
    EXPECT_TRUE(DispatchUntil([&] { return ids.size() >= expected.size(); }));
    EXPECT_EQ(expected, ids);
}

// A thread's messages stay with it: each client thread gets its own parser's events.
TEST_F(LiveEventTest, EachThreadGetsTheEventsOfItsParser) {
    constexpr int kThreads = 3;
    constexpr int kCount = 300;
    std::array<TestPort, kThreads> ports;
    std::array<int, kThreads> wrong{};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            CoInitialize(nullptr);
            {
                // Not by name, which gives a proxy of an object on the first thread.
                const ComPtr<IDispatch> parser = CreateDirectly(CreatableClasses()[0].classId);
                const Listener listener(parser.Get());
                const NumberCheck check(*listener);
                EnablePort(parser.Get(), ports[i]);
                ports[i].StartStream(Numbered(0, kCount), 600000);
                EXPECT_TRUE(DispatchUntil([&] { return check.count() == kCount; }));
                wrong[i] = check.wrong();
            }
            CoUninitialize();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ((std::array<int, kThreads>{}), wrong);
}

TEST_F(LiveEventTest, ReleasedWithMessagesPending) {
    TestPort port;
    for (int i = 0; i < 5; ++i) {
        const auto recorder = EventRecorder::Make();
        if (!reference()) reference() = CreateParser();
        DWORD cookie = 0;
        EventsOf(parser())->Advise(recorder.Get(), &cookie);
        Enable(port);
        port.Feed(Numbered(0, 200));
        reference().Reset();
        EXPECT_EQ(1U, recorder->references());
        EXPECT_EQ(S_OK, CanUnloadNow()) << "what is on its way keeps the parser";
        DispatchFor(20);
        EXPECT_EQ(0U, recorder->events().size());
        EXPECT_EQ(0U, CommHandle(port.name()).error());
    }
}

// A client may end it all, or only the reading, inside of any event.
TEST_F(LiveEventTest, DisabledOrReleasedByAnEvent) {
    reference().Reset();
    for (const DISPID id : {kOnComStatus, kGga, kOnGpsFix, kGeneric}) {
        for (const bool isReleasing : {false, true}) {
            SCOPED_TRACE(std::to_string(id) + (isReleasing ? " releases" : " disables"));
            TestPort port;
            ComPtr<IDispatch> parser = CreateParser();
            auto recorder = EventRecorder::Make();
            ComPtr<IConnectionPoint> point = EventsOf(parser.Get());
            DWORD cookie = 0;
            point->Advise(recorder.Get(), &cookie);
            int after = 0;
            bool isDone = false;
            recorder->SetReaction([&](const RecordedEvent& event) {
                if (isDone) ++after;
                if (isDone || event.id != id) return S_OK;
                isDone = true;
                if (!isReleasing) return Put(parser.Get(), L"PortEnabled", false).status;
                point->Unadvise(cookie);
                point.Reset();
                parser.Reset();
                return S_OK;
            });
            EnablePort(parser.Get(), port);
            port.StartStream(kGgaLine, 0);
            EXPECT_TRUE(DispatchUntil([&] { return isDone; }));
            EXPECT_EQ(0U, CommHandle(port.name()).error());
            port.StopStream();
            DispatchFor(20);
            if (isReleasing) {
                EXPECT_EQ(0, after);
                recorder->Clear();
                EXPECT_EQ(S_OK, CanUnloadNow());
            } else {
                point->Unadvise(cookie);
            }
        }
    }
}

// Enabling and disabling from within events, over and over.
TEST_F(LiveEventTest, EnabledAgainByAnEvent) {
    TestPort port;
    const Listener listener(parser());
    int rounds = 0;
    listener->SetReaction([&](const RecordedEvent& event) {
        listener->Clear();
        if (event.id != kGeneric || rounds == 10) return S_OK;
        ++rounds;
        Disable();
        Enable(port);
        return S_OK;
    });
    Enable(port);
    port.StartStream(kGgaLine, 1);
    EXPECT_TRUE(DispatchUntil([&] { return rounds == 10; }));
}

BOOL CALLBACK AddHiddenWindow(HWND window, LPARAM list) {
    wchar_t title[32] = L"";
    GetWindowTextW(window, title, 32);
    if (std::wstring(title) == L"kvFormSync")
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

std::vector<HWND> HiddenWindows() {
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), AddHiddenWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

TEST_F(LiveEventTest, OneHiddenWindowEachOfOneClass) {
    ComPtr<IDispatch> second = CreateParser();
    const std::vector<HWND> windows = HiddenWindows();
    ASSERT_EQ(2U, windows.size());
    EXPECT_EQ(GetClassLongPtrW(windows[0], GCW_ATOM), GetClassLongPtrW(windows[1], GCW_ATOM));
    for (HWND window : windows) {
        wchar_t name[64] = L"";
        EXPECT_EQ(36, GetClassNameW(window, name, 64));
        EXPECT_EQ(L'-', name[8]);
        EXPECT_FALSE(IsWindowVisible(window));
        EXPECT_EQ(0, GetWindowLongW(window, GWL_EXSTYLE));
        RECT place;
        GetWindowRect(window, &place);
        EXPECT_EQ(100, place.right - place.left);
        EXPECT_EQ(100, place.bottom - place.top);
    }
    second.Reset();
    EXPECT_EQ(1U, HiddenWindows().size());
    reference().Reset();
    EXPECT_EQ(0U, HiddenWindows().size());
}

// Messages that nothing waits for, and ones that another window was sent, mean nothing.
TEST_F(LiveEventTest, StrayMessagesAreIgnored) {
    TestPort port;
    const Listener listener(parser());
    const NumberCheck check(*listener);
    const ComPtr<IDispatch> second = CreateParser();
    const Listener other(second.Get());
    Enable(port);
    // All of them are handled before keys are given: later they might be meant.
    const auto flood = [] {
        for (HWND window : HiddenWindows()) {
            for (LPARAM key = -2; key < 300; ++key)
                PostMessageW(window, kHandOverMessage, 0, key);
        }
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    };
    flood();
    EXPECT_EQ(0, check.count());
    port.Feed(Numbered(0, 100));
    EXPECT_TRUE(DispatchUntil([&] { return check.count() == 100; }));
    flood();
    EXPECT_EQ(100, check.count());
    EXPECT_EQ(0, check.wrong());
    EXPECT_EQ(0U, other->events().size());
}

int posts = 0;

BOOL WINAPI CountPosts(HWND window, UINT message, WPARAM first, LPARAM second) {
    ++posts;
    return PostMessageW(window, message, first, second);
}

TEST_F(LiveEventTest, NothingIsPostedWithoutEvents) {
    const ImportHook hook("PostMessageW", CountPosts);
    TestPort port;
    ExpectSteps(parser(), {{L"=NoEvents", {true}, ""}});
    Enable(port);
    posts = 0;
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(std::to_string(port.number()) + "@4800 nmea fix"));
    EXPECT_EQ(0, posts);
    Disable();
    ExpectSteps(parser(), {{L"=NoEvents", {false}, ""}});
    Enable(port);
    EXPECT_TRUE(DispatchUntil([] { return posts > 0; }));
}

}  // namespace

}  // namespace kavrel::tests
