// What the platform is asked for when a port is opened, and what becomes of its refusals: by
// replaced imports.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <bit>
#include <cstring>
#include <string>

#include "automation/support/failing_import.h"
#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

// What was sent to the port's driver last. The product calls from one thread at a time.
struct Sent {
    DCB block;
    COMMTIMEOUTS timeouts;
    std::string calls;  // in their order
} sent;

BOOL WINAPI SeeState(HANDLE port, DCB* block) {
    sent.block = *block;
    sent.calls += "block ";
    return SetCommState(port, block);
}
BOOL WINAPI SeeTimeouts(HANDLE port, COMMTIMEOUTS* timeouts) {
    sent.timeouts = *timeouts;
    sent.calls += "timeouts ";
    return SetCommTimeouts(port, timeouts);
}
HANDLE WINAPI SeeCreate(const wchar_t* name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* who,
                        DWORD disposition, DWORD attributes, HANDLE pattern) {
    sent.calls += "open " + Narrow(name) + " ";
    EXPECT_EQ(GENERIC_READ | GENERIC_WRITE, access);
    EXPECT_EQ(0U, sharing);
    EXPECT_EQ(DWORD{OPEN_EXISTING}, disposition);
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_NORMAL}, attributes);
    EXPECT_EQ(nullptr, who);
    EXPECT_EQ(nullptr, pattern);
    return CreateFileW(name, access, sharing, who, disposition, attributes, pattern);
}

// As a driver may have it set by somebody else: the product must change its own fields only.
DCB OtherState() {
    DCB block;
    std::memset(&block, 0xFF, sizeof block);
    block.DCBlength = sizeof block;
    block.fDummy2 = block.wReserved1 = 0;
    block.XonLim = 111;
    block.XoffLim = 222;
    block.XonChar = 'a';
    block.XoffChar = 'b';
    block.EofChar = 'd';
    return block;
}
BOOL WINAPI GetOtherState(HANDLE, DCB* block) {
    *block = OtherState();
    return TRUE;
}

DCB ExpectedState() {
    DCB block = OtherState();
    block.BaudRate = 38400;
    block.ByteSize = 8;
    block.Parity = NOPARITY;
    block.StopBits = ONESTOPBIT;
    // Parity is checked, although there is none.
    block.fOutxCtsFlow = block.fOutxDsrFlow = block.fDsrSensitivity = 0;
    block.fDtrControl = DTR_CONTROL_ENABLE;
    block.fRtsControl = RTS_CONTROL_ENABLE;
    block.fOutX = block.fInX = block.fNull = block.fAbortOnError = 0;
    block.wReserved = 0;
    block.ErrorChar = block.EvtChar = 0;
    return block;
}

template <typename T>
auto BytesOf(const T& block) {
    return std::bit_cast<std::array<unsigned char, sizeof block>>(block);
}

class LiveFaultTest : public LiveTest {
  protected:
    // Enables while the nth call of a function fails; that leaves nothing behind.
    template <typename Function>
    void ExpectRefusal(const char* name, auto failure, DWORD error, const std::string& outcome,
                       LONG nth = 1) {
        const FailingImport<Function> fault(name, nth, failure, Failing::FromThenOn, error);
        EXPECT_EQ(outcome + " (NmeaParser Class)", TryEnable(parser(), port_.number())) << error;
        EXPECT_EQ(0U, port_.ErrorOfOpening()) << name;
    }

    TestPort port_;
};

TEST_F(LiveFaultTest, AsksThePlatformInOrderAndExactly) {
    sent = {};
    const ImportHook create("CreateFileW", SeeCreate);
    const ImportHook found("GetCommState", GetOtherState);
    const ImportHook state("SetCommState", SeeState);
    const ImportHook timeouts("SetCommTimeouts", SeeTimeouts);
    Enable(port_, 38400);
    EXPECT_EQ("open " + Narrow(port_.name()) + " block timeouts ", sent.calls);
    EXPECT_EQ(BytesOf(ExpectedState()), BytesOf(sent.block));
    EXPECT_EQ(BytesOf(COMMTIMEOUTS{0, 0, 200, 1, 0}), BytesOf(sent.timeouts));

    sent.calls.clear();
    ExpectSteps(parser(), {{L"=BaudRate", {12345}, ""}});
    EXPECT_EQ("block ", sent.calls);
    EXPECT_EQ(12345U, sent.block.BaudRate);
}

TEST_F(LiveFaultTest, EveryFailingStepIsTold) {
    const std::pair<DWORD, const char*> kErrorsOfOpening[] = {
        {0, "80042717 Could not open comm port!"},
        {2, "80042717 Comm port does not exist"},
        {5, "80042717 Comm port in use!"},
        {433, "800401B1 Could not open comm port!"}};
    for (const auto& [error, outcome] : kErrorsOfOpening) {
        ExpectRefusal<decltype(CreateFileW)>("CreateFileW", INVALID_HANDLE_VALUE, error, outcome);
    }
    ExpectRefusal<decltype(SetCommState)>("SetCommState", FALSE, 31, "80042717 Could not set DCB");
    ExpectRefusal<decltype(SetCommTimeouts)>("SetCommTimeouts", FALSE, 31,
                                             "80042717 Unexpected com port error.");
    ExpectRefusal<decltype(EscapeCommFunction)>("EscapeCommFunction", FALSE, 31,
                                                "8004001F Error setting DTR");
    // The parser's own reader, which stays once it was made, and one of the port's threads.
    for (const LONG nth : {1, 2}) {
        ExpectRefusal<decltype(CreateThread)>("CreateThread", nullptr, 8,
                                              "80040008 Could not create thread", nth);
    }
    Enable(port_);
}

}  // namespace

}  // namespace kavrel::tests
