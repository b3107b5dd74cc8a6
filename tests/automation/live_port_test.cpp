// The parser with a serial port: opening, its rate, writing, closing, and a device that goes away.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

using testing::Each;
using testing::StartsWith;
using LivePortTest = LiveTest;

constexpr const char* kMissing = "80042717 Comm port does not exist (NmeaParser Class)";

// Each event tells how things are when it arrives, so it has to arrive before they change.
TEST_F(LivePortTest, TellsPortRateNmeaAndFix) {
    TestPort port;
    const Listener listener(parser());
    std::string told;
    const auto expectNext = [&](const std::string& status) {
        told += (told.empty() ? "" : ", ") + At(port, status);
        DispatchUntil([&] { return StatusesOf(*listener) == told; });
        EXPECT_EQ(told, StatusesOf(*listener));
    };
    Enable(port, 38400);
    expectNext("38400");
    EXPECT_EQ(38400, port.BaudRate());
    ExpectSteps(parser(), {{L"=BaudRate", {9600}, ""}});
    expectNext("9600");
    EXPECT_EQ(9600, port.BaudRate());
    port.Feed(NumberedLine(1));
    expectNext("9600 nmea");
    port.Feed(kGgaLine);
    expectNext("9600 nmea fix");
    Disable();
    DispatchFor(50);
    EXPECT_EQ(told, StatusesOf(*listener));
}

TEST_F(LivePortTest, WrittenDataArriveUnchanged) {
    std::wstring wide;
    for (int i = 0; i < 20000; ++i)
        wide += static_cast<wchar_t>(i % 256);
    const std::string all(wide.begin(), wide.end());
    TestPort port;
    Enable(port);
    ExpectSteps(parser(), {{L"WriteData", {wide}, ""}});
    EXPECT_TRUE(all == port.Written(all.size()));
    Var array = Var::Of(VT_ARRAY | VT_UI1);
    V_ARRAY(array.get()) = SafeArrayCreateVector(VT_UI1, 0, 2);
    ExpectSteps(parser(), {{L"WriteData", {array}, ""}});
    EXPECT_EQ(std::string(2, '\0'), port.Written(2));
    // Nothing can be written, too. Of blocks that come faster than the port's writer wakes, the
    // last ones wait for the next.
    ExpectSteps(parser(), {{L"WriteData", {L""}, ""}, {L"WriteData", {}, ""}});
    EXPECT_TRUE(DispatchUntil([&] {
        ExpectSteps(parser(), {{L"WriteData", {L"."}, ""}});
        return !port.Written(1, 20).empty();
    }));
}

// The promise is 250 ms; a loaded machine may be slower, a reader that is not heeded never ends.
TEST_F(LivePortTest, ClosesSoonWhileSilent) {
    TestPort port;
    for (const bool isReleased : {false, true}) {
        for (const int afterMs : {0, 50, 100}) {
            parser_ = CreateParser();
            Enable(port);
            DispatchFor(afterMs);
            const auto release = [this] { parser_.Reset(); };
            const auto disable = [this] { Disable(); };
            EXPECT_GT(2000, isReleased ? MillisecondsOf(release) : MillisecondsOf(disable));
            EXPECT_EQ(0U, port.ErrorOfOpening());
        }
    }
}

// What the first device left half said must not become a sentence with what the second one says.
TEST_F(LivePortTest, UnpluggingIsToldOnceAndMendedByEnablingAgain) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    port.Feed(kGgaLine + "$PKVRL,");
    WaitForStatus(At(port, "4800 nmea fix"));
    listener->Clear();
    port.Unplug();
    EXPECT_TRUE(DispatchUntil([&] { return !listener->events().empty(); }));
    // Further reads would fail every time, and tell again.
    DispatchFor(600);
    EXPECT_EQ(At(port, "4800"), StatusesOf(*listener));
    EXPECT_EQ(1U, listener->events().size());

    Disable();
    EXPECT_EQ(kMissing, Outcome(Put(parser(), L"PortEnabled", true)));
    port.PlugIn();
    Enable(port);
    port.Feed("1\r\n" + kGgaLine);
    WaitForStatus(At(port, "4800 nmea fix"));
    EXPECT_THAT(listener->texts(), Each(StartsWith(L"$GPGGA")));
}

}  // namespace

}  // namespace kavrel::tests
