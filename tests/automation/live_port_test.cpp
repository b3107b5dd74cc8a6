// The parser with a serial port: opening, its rate, writing, closing, and a device that goes away.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <vector>

#include "automation/support/comm_handle.h"
#include "automation/support/live_test.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using LivePortTest = LiveTest;

constexpr const char* kMissing = "80042717 Comm port does not exist (NmeaParser Class)";
constexpr const char* kInUse = "80042717 Comm port in use! (NmeaParser Class)";
constexpr const char* kEnabled = "80042716 Port must not be enabled! (NmeaParser Class)";
constexpr const char* kDisabled = "80042716 Port must be enabled! (NmeaParser Class)";

std::string PortText(const TestPort& port, const std::string& rest) {
    return std::to_string(port.number()) + "@" + rest;
}

TEST_F(LivePortTest, TellsPortRateNmeaAndFix) {
    TestPort port;
    const Listener listener(parser());
    Enable(port, 38400);
    EXPECT_EQ(38400, port.BaudRate());
    EXPECT_TRUE(port.Lines().dtr);
    // Each event tells how things are when it arrives, so it has to arrive before they change.
    std::string expected = PortText(port, "38400");
    const auto isTold = [&] { return StatusesOf(*listener) == expected; };
    EXPECT_TRUE(DispatchUntil(isTold));
    port.Feed(NumberedLine(1));
    expected += ", " + PortText(port, "38400 nmea");
    EXPECT_TRUE(DispatchUntil(isTold));
    port.Feed(kGgaLine);
    expected += ", " + PortText(port, "38400 nmea fix");
    EXPECT_TRUE(DispatchUntil(isTold));
    Disable();
    DispatchFor(50);
    EXPECT_EQ(expected, StatusesOf(*listener));
}

TEST_F(LivePortTest, SettingsAreFrozenWhileEnabled) {
    TestPort port;
    ExpectSteps(parser(), {{L"WriteData", {L"x"}, kDisabled}});
    Enable(port);
    EXPECT_EQ("", Outcome(Put(parser(), L"PortEnabled", true)));
    ExpectSteps(parser(), {{L"Parse", {L"$"}, kEnabled},
                           {L"=ComPort", {port.number() + 1}, kEnabled},
                           {L"=NoEvents", {true}, kEnabled}});
    Disable();
    Disable();
    Enable(port);
    EXPECT_EQ(kInUse, [&] {
        const ComPtr<IDispatch> other = CreateParser();
        return TryEnable(other.Get(), port.number());
    }());
}

TEST_F(LivePortTest, MissingPortsAreReported) {
    int gone = 0;
    {
        const TestPort port;
        gone = port.number();
    }
    // No platform has port 10 and above under the short name.
    for (const int number : {gone, 10, 99, 32767, -2}) {
        EXPECT_EQ(kMissing, TryEnable(parser(), number)) << number;
        ExpectSteps(parser(), {{L"WriteData", {L"x"}, kDisabled}});
    }
}

TEST_F(LivePortTest, APortInUseIsReportedUntilItIsFree) {
    TestPort port;
    CommHandle other(port.name());
    EXPECT_EQ(kInUse, TryEnable(parser(), port.number()));
    other.Close();
    Enable(port);
    EXPECT_EQ(DWORD{ERROR_ACCESS_DENIED}, CommHandle(port.name()).error());
    Disable();
    EXPECT_EQ(0U, CommHandle(port.name()).error());
    Enable(port);
    reference().Reset();
    EXPECT_EQ(0U, CommHandle(port.name()).error());
}

TEST_F(LivePortTest, TheRateChangesWhileThePortIsOpen) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    for (const int rate : {9600, 19200, 38400, 57600, 115200, 4800}) {
        ExpectSteps(parser(), {{L"=BaudRate", {rate}, ""}});
        EXPECT_EQ(rate, port.BaudRate());
        EXPECT_TRUE(WaitForStatus(PortText(port, std::to_string(rate))));
    }
    port.Feed(NumberedLine(7));
    EXPECT_TRUE(DispatchUntil([&] { return !listener->texts().empty(); }));
}

Var ByteArray(const std::string& bytes) {
    Var array = Var::Of(VT_ARRAY | VT_UI1);
    V_ARRAY(array.get()) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    void* data = nullptr;
    SafeArrayAccessData(V_ARRAY(array.get()), &data);
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(data));
    SafeArrayUnaccessData(V_ARRAY(array.get()));
    return array;
}

Var VariantArray(const std::string& bytes) {
    Var array = Var::Of(VT_ARRAY | VT_VARIANT);
    V_ARRAY(array.get()) = SafeArrayCreateVector(VT_VARIANT, 1, static_cast<ULONG>(bytes.size()));
    for (size_t i = 0; i < bytes.size(); ++i) {
        auto index = static_cast<LONG>(i + 1);
        Var byte(static_cast<int>(static_cast<unsigned char>(bytes[i])));
        SafeArrayPutElement(V_ARRAY(array.get()), &index, byte.get());
    }
    return array;
}

TEST_F(LivePortTest, WrittenDataArriveUnchanged) {
    std::string all;
    std::wstring wide;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
        wide += static_cast<wchar_t>(i);
    }
    std::string large;
    while (large.size() < 10000)
        large += all;
    Var array = ByteArray(all);
    const struct {
        Var data;
        std::string expected;
    } kCases[] = {
        {Var(L"$PKVRL,1*00\r\n"), "$PKVRL,1*00\r\n"},
        {Var(wide), all},
        {array, all},
        {Var::To(array), all},
        {VariantArray(all), all},
        {ByteArray(large), large},
        {Var(L"\u0141"), "A"},  // each character's low byte
        {Var(12), "12"},
    };
    TestPort port;
    Enable(port);
    for (const auto& test : kCases) {
        EXPECT_EQ("", Outcome(Call(parser(), L"WriteData", {test.data})));
        EXPECT_TRUE(test.expected == port.Written(test.expected.size())) << Describe(test.data);
    }
    // Nothing can be written, too. Of blocks that come faster than the port's writer wakes, the
    // last ones wait for the next.
    ExpectSteps(parser(), {{L"WriteData", {L""}, ""}, {L"WriteData", {}, ""}});
    EXPECT_TRUE(DispatchUntil([&] {
        EXPECT_EQ("", Outcome(Call(parser(), L"WriteData", {L"."})));
        return !port.Written(1, 20).empty();
    }));
}

TEST_F(LivePortTest, TwoParsersReadTwoPorts) {
    std::array<TestPort, 2> ports;
    const ComPtr<IDispatch> second = CreateParser();
    const std::array<IDispatch*, 2> parsers = {parser(), second.Get()};
    const Listener first(parsers[0]);
    const Listener other(parsers[1]);
    const std::array<const Listener*, 2> listeners = {&first, &other};
    for (size_t i = 0; i < 2; ++i) {
        EnablePort(parsers[i], ports[i]);
        std::string text;
        for (int line = 0; line < 500; ++line)
            text += Line("PKVRL," + std::to_string(i) + "," + std::to_string(line));
        ports[i].StartStream(text, 60000);
    }
    EXPECT_TRUE(DispatchUntil(
        [&] { return first->texts().size() + other->texts().size() == size_t{1000}; }));
    for (size_t i = 0; i < 2; ++i) {
        const std::vector<std::wstring> texts = (*listeners[i])->texts();
        ASSERT_EQ(500U, texts.size());
        for (int line = 0; line < 500; ++line) {
            const std::string sent =
                Line("PKVRL," + std::to_string(i) + "," + std::to_string(line));
            EXPECT_EQ(sent.substr(0, sent.size() - 2), Narrow(texts[static_cast<size_t>(line)]));
        }
    }
}

// The promise is 250 ms; a loaded machine may be slower, a reader that is not heeded never ends.
TEST_F(LivePortTest, ClosesSoon) {
    constexpr double kLimitMs = 2000;
    const struct {
        const char* name;
        bool isStreaming;
        bool isReleased;
    } kCases[] = {{"silent", false, false},
                  {"streaming", true, false},
                  {"silent, released", false, true},
                  {"streaming, released", true, true}};
    for (const auto& test : kCases) {
        TestPort port;
        double worst = 0;
        for (int i = 0; i < 5; ++i) {
            if (!parser()) reference() = CreateParser();
            Listener listener(parser());
            Enable(port);
            if (test.isStreaming) {
                port.StartStream(kGgaLine + kRmcLine, 0);
                EXPECT_TRUE(DispatchUntil([&] { return !listener->texts().empty(); }));
            } else {
                DispatchFor(20 * i);
            }
            // Its connection point keeps the parser.
            if (test.isReleased) listener.Disconnect();
            worst = std::max(worst, MillisecondsOf([&] {
                                 if (test.isReleased) {
                                     reference().Reset();
                                 } else {
                                     Disable();
                                 }
                             }));
            EXPECT_EQ(0U, CommHandle(port.name()).error());
        }
        std::printf("close while %s: at most %.1f ms\n", test.name, worst);
        EXPECT_GT(kLimitMs, worst) << test.name;
    }
}

TEST_F(LivePortTest, UnpluggingIsToldOnceAndMendedByEnablingAgain) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(PortText(port, "4800 nmea fix")));
    listener->Clear();
    port.Unplug();
    EXPECT_TRUE(DispatchUntil([&] { return !listener->events().empty(); }));
    // Further reads would fail every time, and tell again.
    DispatchFor(600);
    EXPECT_EQ(PortText(port, "4800"), StatusesOf(*listener));
    EXPECT_EQ(1U, listener->events().size());

    Disable();
    EXPECT_EQ(kMissing, Outcome(Put(parser(), L"PortEnabled", true)));
    port.PlugIn();
    Enable(port);
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(PortText(port, "4800 nmea fix")));
}

// What the first port left half said must not become a sentence with what the second one says.
TEST_F(LivePortTest, EachEnablingBeginsAfresh) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    port.Feed(NumberedLine(1) + "$PKVRL,");
    EXPECT_TRUE(DispatchUntil([&] { return listener->texts().size() == 1; }));
    Disable();
    Enable(port);
    EXPECT_TRUE(WaitForStatus(PortText(port, "4800")));
    port.Feed("2*00\r\n" + NumberedLine(3));
    EXPECT_TRUE(DispatchUntil([&] { return listener->texts().size() == 2; }));
    EXPECT_EQ(NumberedLine(3), Narrow(listener->texts().back()) + "\r\n");
}

}  // namespace

}  // namespace kavrel::tests
