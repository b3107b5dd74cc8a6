// Receivers that have to be found: on one of the device's ports, or shared by the other product.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <string>

#include "automation/support/live_test.h"
#include "automation/support/shared_receiver_server.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr const char* kNotInstalled =
    "80040154 Ravelin not installed! Cannot create object RavelinApi::Simple (NmeaParser Class)";
constexpr const char* kDetecting = "80042716 Autodetect mode not allowed (NmeaParser Class)";

// The list of active drivers, for a scope.
class ActiveDrivers {
  public:
    ActiveDrivers() { Clean(); }
    ~ActiveDrivers() { Clean(); }

    // In the registry's order, which is alphabetical.
    void Add(const std::wstring& key, const std::wstring& name) const {
        const std::wstring path = L"Drivers\\Active\\" + key;
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), L"Name", REG_SZ, name.c_str(),
                                  static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t))));
    }

  private:
    static void Clean() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Drivers"); }
};

class LiveSearchTest : public LiveTest {
  protected:
    ActiveDrivers drivers_;
};

std::string At(int port, const std::string& rest) {
    return std::to_string(port) + "@" + rest;
}

// Each try takes two seconds, so there is one silent port to wait for.
TEST_F(LiveSearchTest, FindsAReceiverOnTheThirdOfFourPorts) {
    std::array<TestPort, 4> ports;
    TestPort& receiver = ports[2];
    ports[0].Unplug();  // listed, but not there
    drivers_.Add(L"01", L"SER1:");
    for (size_t i = 0; i < ports.size(); ++i)
        drivers_.Add(L"1" + std::to_wstring(i), ports[i].name());
    receiver.StartStream(kGgaLine, 20);
    const Listener listener(parser());
    ASSERT_EQ("", TryEnable(parser(), 0, 38400));
    ExpectSteps(parser(), {{L"=BaudRate", {9600}, kDetecting}, {L"WriteData", {L"x"}, kDetecting}});
    EXPECT_EQ("", StatusesOf(*listener));
    const std::string found = At(receiver.number(), "38400 nmea");
    const double ms = MillisecondsOf([&] { EXPECT_TRUE(WaitForStatus(found + " fix")); });
    std::printf("found after %.0f ms\n", ms);
    EXPECT_LE(1900, ms);
    // The first port that is tried tells of itself; found, the receiver's port does, and its fix.
    const std::string told = StatusesOf(*listener);
    EXPECT_EQ(0U, told.find(At(ports[1].number(), "38400, ")));
    EXPECT_NE(std::string::npos, told.find(found));
    EXPECT_EQ(std::string::npos, told.find(At(ports[3].number(), "")));
    EXPECT_EQ(38400, receiver.BaudRate());
    Disable();
}

TEST_F(LiveSearchTest, FindsTheRateOfAPort) {
    TestPort port;
    const Listener listener(parser());
    ASSERT_EQ("", TryEnable(parser(), port.number(), 0));
    // Silent at the first rate.
    const std::string told = At(port.number(), "4800, ") + At(port.number(), "9600");
    EXPECT_TRUE(DispatchUntil([&] { return StatusesOf(*listener) == told; }));
    EXPECT_EQ(9600, port.BaudRate());
    port.StartStream(kGgaLine, 20);
    EXPECT_TRUE(WaitForStatus(At(port.number(), "9600 nmea fix")));
    Disable();
}

// A text that passes for a sentence proves nothing without a checksum.
TEST_F(LiveSearchTest, NoiseIsNoReceiver) {
    TestPort port;
    ASSERT_EQ("", TryEnable(parser(), port.number(), 0));
    port.StartStream("$GPGGA,120000\r\n\x80\xFF$\r\n", 5);
    EXPECT_TRUE(WaitForStatus(At(port.number(), "9600")));
    Disable();
}

TEST_F(LiveSearchTest, DisablingEndsASearchSoon) {
    TestPort port;
    for (const bool isListed : {false, true}) {
        if (isListed) drivers_.Add(L"01", port.name());
        double worst = 0;
        for (int i = 0; i < 4; ++i) {
            ASSERT_EQ("", TryEnable(parser(), 0, 0));
            DispatchFor(150 + 50 * i);
            worst = std::max(worst, MillisecondsOf([&] { Disable(); }));
        }
        std::printf("search with %d ports ended within %.1f ms\n", isListed ? 1 : 0, worst);
        EXPECT_GT(2000, worst);
    }
}

TEST_F(LiveSearchTest, AFailingReceiverIsSearchedAgain) {
    TestPort port;
    drivers_.Add(L"01", port.name());
    const Listener listener(parser());
    ASSERT_EQ("", TryEnable(parser(), 0, 4800));
    port.StartStream(kGgaLine, 20);
    const std::string found = At(port.number(), "4800 nmea fix");
    EXPECT_TRUE(WaitForStatus(found));
    port.Unplug();
    EXPECT_TRUE(WaitForStatus(At(port.number(), "4800")));
    port.PlugIn();
    port.StartStream(kGgaLine, 20);
    EXPECT_TRUE(WaitForStatus(found));
    Disable();
}

TEST_F(LiveSearchTest, WithoutTheProductItsAbsenceIsToldWhereItAloneIsWanted) {
    EXPECT_EQ(kNotInstalled, TryEnable(parser(), -1));
    ExpectSteps(parser(),
                {{L"WriteData", {L"x"}, "80042716 Port must be enabled! (NmeaParser Class)"}});
    EXPECT_EQ("", TryEnable(parser(), 0));
    Disable();
}

TEST_F(LiveSearchTest, TheSharedReceiverIsUsedWhereThereIsOne) {
    const SharedReceiverServer product;
    ASSERT_TRUE(product.IsThere());
    for (const int comPort : {-1, 0}) {
        product->Reset();
        reference() = CreateParser();
        const Listener listener(parser());
        ASSERT_EQ("", TryEnable(parser(), comPort));
        EXPECT_STREQ("6(1) 4() ", product->calls());
        EXPECT_EQ(1, product->sinks());
        EXPECT_TRUE(WaitForStatus("-1@0"));
        const std::wstring text(kGgaLine.begin(), kGgaLine.end());
        product.RaiseText(text.substr(0, 20));
        product.RaiseText(text.substr(20));
        EXPECT_TRUE(WaitForStatus("-1@0 nmea fix"));
        EXPECT_EQ(kGgaLine, Narrow(listener->texts().back()) + "\r\n");
        Disable();
        EXPECT_EQ(0, product->sinks());
        EXPECT_EQ(0, product->objects());
    }
}

TEST_F(LiveSearchTest, ASharedReceiverThatRefusesIsReported) {
    const SharedReceiverServer product;
    ASSERT_TRUE(product.IsThere());
    product->Answer(6, MAKE_HRESULT(1, FACILITY_ITF, 0x1234), L"No receiver in range");
    EXPECT_EQ("80041234 No receiver in range (NmeaParser Class)", TryEnable(parser(), -1));
    EXPECT_EQ(0, product->objects());
    EXPECT_EQ("", TryEnable(parser(), 0));
    EXPECT_EQ(0, product->objects());
    Disable();
}

// Closed: told where it alone was wanted; where it was not, the ports are searched instead.
TEST_F(LiveSearchTest, AClosedSharedReceiver) {
    const SharedReceiverServer product;
    ASSERT_TRUE(product.IsThere());
    TestPort port;
    drivers_.Add(L"01", port.name());
    for (const int comPort : {-1, 0}) {
        product->Reset();
        reference() = CreateParser();
        const Listener listener(parser());
        ASSERT_EQ("", TryEnable(parser(), comPort));
        product.RaiseText(std::wstring(kGgaLine.begin(), kGgaLine.end()));
        EXPECT_TRUE(WaitForStatus("-1@0 nmea fix"));
        listener->Clear();
        Var null = Var::Of(VT_NULL);
        product->Raise(20, null.get());
        EXPECT_TRUE(WaitForStatus(comPort == -1 ? "-1@0" : At(port.number(), "4800")));
        EXPECT_TRUE(DispatchUntil([&] { return !listener->events().empty(); }));
        Disable();
        EXPECT_EQ(0, product->objects());
    }
}

}  // namespace

}  // namespace kavrel::tests
