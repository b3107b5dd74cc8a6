// Receivers that have to be found: on one of the device's ports, or shared by the other product.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <string>

#include "automation/support/live_test.h"
#include "automation/support/shared_receiver_server.h"

namespace kavrel::tests {

namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class LiveSearchTest : public LiveTest {
  protected:
    void SetUp() override {
        LiveTest::SetUp();
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Drivers");
    }
    void TearDown() override {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Drivers");
        LiveTest::TearDown();
    }

    // An active driver. They are found in the order of their keys.
    static void AddDriver(const std::wstring& key, const std::wstring& name) {
        const std::wstring path = L"Drivers\\Active\\" + key;
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), L"Name", REG_SZ, name.c_str(),
                                  static_cast<DWORD>((name.size() + 1) * sizeof(wchar_t))));
    }
};

// Each try takes two seconds, so there is one silent port to wait for.
TEST_F(LiveSearchTest, FindsAReceiverOnTheThirdOfFourPorts) {
    std::array<TestPort, 4> ports;
    TestPort& receiver = ports[2];
    ports[0].Unplug();  // listed, but not there
    AddDriver(L"01", L"SER1:");
    for (size_t i = 0; i < ports.size(); ++i)
        AddDriver(L"1" + std::to_wstring(i), ports[i].name());
    receiver.StartStream(kGgaLine, 20);
    const Listener listener(parser());
    ASSERT_EQ("", TryEnable(parser(), 0, 38400));
    const char* const detecting = "80042716 Autodetect mode not allowed (NmeaParser Class)";
    ExpectSteps(parser(), {{L"=BaudRate", {9600}, detecting}, {L"WriteData", {L"x"}, detecting}});
    const std::string found = At(receiver, "38400 nmea");
    EXPECT_LE(1900, MillisecondsOf([&] { WaitForStatus(found + " fix"); }));
    // The first port that is tried tells of itself; found, the receiver's port does, and its fix.
    EXPECT_THAT(StatusesOf(*listener), StartsWith(At(ports[1], "38400, ")));
    EXPECT_THAT(StatusesOf(*listener), HasSubstr(found));
    EXPECT_THAT(StatusesOf(*listener), Not(HasSubstr(At(ports[3], ""))));
    EXPECT_EQ(38400, receiver.BaudRate());
    Disable();
}

// The promise for ending a search is 250 ms; a loaded machine may be slower.
TEST_F(LiveSearchTest, WithoutTheProductItsAbsenceIsToldWhereItAloneIsWanted) {
    EXPECT_EQ(
        "80040154 Ravelin not installed! Cannot create object RavelinApi::Simple "
        "(NmeaParser Class)",
        TryEnable(parser(), -1));
    TestPort port;
    for (const bool isListed : {false, true}) {
        if (isListed) AddDriver(L"01", port.name());
        EXPECT_EQ("", TryEnable(parser(), 0));
        DispatchFor(200);
        EXPECT_GT(2000, MillisecondsOf([this] { Disable(); }));
    }
}

// Refusing and closing: told where it alone is wanted; where it is not, the ports are searched.
TEST_F(LiveSearchTest, TheSharedReceiverIsUsedWhereThereIsOne) {
    SharedReceiverServer product;
    TestPort port;
    AddDriver(L"01", port.name());
    const std::wstring text(kGgaLine.begin(), kGgaLine.end());
    for (const int comPort : {-1, 0}) {
        ASSERT_EQ("", TryEnable(parser(), comPort));
        EXPECT_THAT(product.calls(), testing::EndsWith("6(1) 4() "));
        WaitForStatus("-1@0");
        const Listener listener(parser());
        product.RaiseText(text.substr(0, 20));
        product.RaiseText(text.substr(20));
        WaitForStatus("-1@0 nmea fix");
        EXPECT_EQ(kGgaLine, Narrow(listener->texts().back()) + "\r\n");
        listener->Clear();
        product.Raise(20, Var::Of(VT_NULL).get());
        WaitForStatus(comPort == -1 ? "-1@0" : At(port, "4800"));
        EXPECT_TRUE(DispatchUntil([&] { return !listener->events().empty(); }));
        Disable();
        EXPECT_FALSE(product.sink());
        EXPECT_EQ(0, product.references());
    }
    product.Answer(6, MAKE_HRESULT(1, FACILITY_ITF, 0x1234), L"No receiver in range");
    EXPECT_EQ("80041234 No receiver in range (NmeaParser Class)", TryEnable(parser(), -1));
    EXPECT_EQ("", TryEnable(parser(), 0));
    EXPECT_EQ(0, product.references());
    Disable();
}

}  // namespace

}  // namespace kavrel::tests
