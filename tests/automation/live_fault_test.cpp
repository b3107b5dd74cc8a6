// What the platform is asked for when a port is opened, and what becomes of its refusals: by
// replaced imports.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <optional>
#include <string>

#include "automation/support/comm_handle.h"
#include "automation/support/import_hook.h"
#include "automation/support/live_test.h"

namespace kavrel::tests {

namespace {

using LiveFaultTest = LiveTest;

std::string Failure(const char* code, const char* text) {
    return std::string(code) + " " + text + " (NmeaParser Class)";
}

// What was sent to the port's driver last. The product calls from one thread at a time.
struct Sent {
    DCB block;
    COMMTIMEOUTS timeouts;
    std::string calls;  // in their order
    std::wstring name;
    DWORD access, sharing, disposition, attributes;
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
BOOL WINAPI SeeEscape(HANDLE port, DWORD function) {
    sent.calls += "escape" + std::to_string(function) + " ";
    return EscapeCommFunction(port, function);
}
BOOL WINAPI SeePurge(HANDLE port, DWORD flags) {
    sent.calls += "purge" + std::to_string(flags) + " ";
    return PurgeComm(port, flags);
}
HANDLE WINAPI SeeCreate(const wchar_t* name, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* who,
                        DWORD disposition, DWORD attributes, HANDLE pattern) {
    sent.name = name;
    sent.access = access;
    sent.sharing = sharing;
    sent.disposition = disposition;
    sent.attributes = attributes;
    sent.calls += "open ";
    EXPECT_EQ(nullptr, who);
    EXPECT_EQ(nullptr, pattern);
    return CreateFileW(name, access, sharing, who, disposition, attributes, pattern);
}
// As a driver may have it set by somebody else: the product must change its own fields only.
BOOL WINAPI OtherState(HANDLE, DCB* block) {
    *block = {};
    block->DCBlength = sizeof *block;
    block->fBinary = 1;
    block->fOutxCtsFlow = block->fOutxDsrFlow = block->fDsrSensitivity = 1;
    block->fDtrControl = DTR_CONTROL_HANDSHAKE;
    block->fRtsControl = RTS_CONTROL_TOGGLE;
    block->fTXContinueOnXoff = block->fErrorChar = 1;
    block->fOutX = block->fInX = block->fNull = block->fAbortOnError = 1;
    block->XonLim = 111;
    block->XoffLim = 222;
    block->XonChar = 'a';
    block->XoffChar = 'b';
    block->ErrorChar = 'c';
    block->EofChar = 'd';
    block->EvtChar = 'e';
    return TRUE;
}

TEST_F(LiveFaultTest, AsksThePlatformInOrderAndExactly) {
    TestPort port;
    sent = {};
    const ImportHook create("CreateFileW", SeeCreate);
    const ImportHook state("SetCommState", SeeState);
    const ImportHook timeouts("SetCommTimeouts", SeeTimeouts);
    const ImportHook escape("EscapeCommFunction", SeeEscape);
    const ImportHook purge("PurgeComm", SeePurge);
    Enable(port, 57600);
    EXPECT_EQ("open block timeouts escape" + std::to_string(SETDTR) + " purge12 ", sent.calls);
    EXPECT_EQ(port.name(), sent.name);
    EXPECT_EQ(GENERIC_READ | GENERIC_WRITE, sent.access);
    EXPECT_EQ(0U, sent.sharing);
    EXPECT_EQ(DWORD{OPEN_EXISTING}, sent.disposition);
    EXPECT_EQ(DWORD{FILE_ATTRIBUTE_NORMAL}, sent.attributes);
    EXPECT_EQ(0U, sent.timeouts.ReadIntervalTimeout);
    EXPECT_EQ(0U, sent.timeouts.ReadTotalTimeoutMultiplier);
    EXPECT_EQ(200U, sent.timeouts.ReadTotalTimeoutConstant);
    EXPECT_EQ(1U, sent.timeouts.WriteTotalTimeoutMultiplier);
    EXPECT_EQ(0U, sent.timeouts.WriteTotalTimeoutConstant);

    sent.calls.clear();
    ExpectSteps(parser(), {{L"=BaudRate", {115200}, ""}});
    EXPECT_EQ("block ", sent.calls);
    EXPECT_EQ(115200U, sent.block.BaudRate);
    ExpectSteps(parser(), {{L"=BaudRate", {12345}, ""}});
    EXPECT_EQ(12345U, sent.block.BaudRate);
}

TEST_F(LiveFaultTest, TheControlBlockIsExact) {
    TestPort port;
    const ImportHook get("GetCommState", OtherState);
    const ImportHook set("SetCommState", SeeState);
    Enable(port, 38400);
    const DCB& block = sent.block;
    EXPECT_EQ(sizeof(DCB), block.DCBlength);
    EXPECT_EQ(38400U, block.BaudRate);
    EXPECT_EQ(8, block.ByteSize);
    EXPECT_EQ(NOPARITY, block.Parity);
    EXPECT_EQ(ONESTOPBIT, block.StopBits);
    // Parity checking is on although there is none to check.
    EXPECT_EQ(1U, block.fParity);
    EXPECT_EQ(0U, block.fOutxCtsFlow);
    EXPECT_EQ(DWORD{RTS_CONTROL_ENABLE}, block.fRtsControl);
    EXPECT_EQ(0U, block.fOutxDsrFlow);
    EXPECT_EQ(DWORD{DTR_CONTROL_ENABLE}, block.fDtrControl);
    EXPECT_EQ(0U, block.fDsrSensitivity);
    EXPECT_EQ(0U, block.fOutX);
    EXPECT_EQ(0U, block.fInX);
    EXPECT_EQ(0U, block.fNull);
    EXPECT_EQ(0U, block.fAbortOnError);
    EXPECT_EQ(0, block.wReserved);
    EXPECT_EQ(0, block.ErrorChar);
    EXPECT_EQ(0, block.EvtChar);
    // As they were.
    EXPECT_EQ(1U, block.fBinary);
    EXPECT_EQ(1U, block.fTXContinueOnXoff);
    EXPECT_EQ(1U, block.fErrorChar);
    EXPECT_EQ(111, block.XonLim);
    EXPECT_EQ(222, block.XoffLim);
    EXPECT_EQ('a', block.XonChar);
    EXPECT_EQ('b', block.XoffChar);
    EXPECT_EQ('d', block.EofChar);
}

DWORD refusal = 0;

HANDLE WINAPI RefuseCreate(const wchar_t*, DWORD, DWORD, SECURITY_ATTRIBUTES*, DWORD, DWORD,
                           HANDLE) {
    SetLastError(refusal);
    return INVALID_HANDLE_VALUE;
}

TEST_F(LiveFaultTest, RefusalsToOpen) {
    const struct {
        DWORD error;
        std::string outcome;
    } kCases[] = {{0, Failure("80042717", "Could not open comm port!")},
                  {2, Failure("80042717", "Comm port does not exist")},
                  {5, Failure("80042717", "Comm port in use!")},
                  {433, Failure("800401B1", "Could not open comm port!")},
                  {31, Failure("8004001F", "Could not open comm port!")}};
    TestPort port;
    for (const auto& test : kCases) {
        const ImportHook hook("CreateFileW", RefuseCreate);
        refusal = test.error;
        EXPECT_EQ(test.outcome, TryEnable(parser(), port.number()));
        ExpectSteps(parser(),
                    {{L"WriteData", {L"x"}, Failure("80042716", "Port must be enabled!")}});
    }
    Enable(port);
}

template <typename... Arguments>
BOOL WINAPI Refuse(Arguments...) {
    SetLastError(31);
    return FALSE;
}

// A failed enable leaves nothing behind, whichever step fails.
TEST_F(LiveFaultTest, RefusalsOfAnOpenPort) {
    TestPort port;
    const auto expectFailure = [&](const std::string& outcome) {
        EXPECT_EQ(outcome, TryEnable(parser(), port.number()));
        EXPECT_EQ(0U, CommHandle(port.name()).error());
    };
    {
        const ImportHook hook("SetCommState", &Refuse<HANDLE, DCB*>);
        expectFailure(Failure("80042717", "Could not set DCB"));
    }
    {
        const ImportHook hook("SetCommTimeouts", &Refuse<HANDLE, COMMTIMEOUTS*>);
        expectFailure(Failure("80042717", "Unexpected com port error."));
    }
    {
        const ImportHook hook("EscapeCommFunction", &Refuse<HANDLE, DWORD>);
        expectFailure(Failure("8004001F", "Error setting DTR"));
    }
    // What cannot be read or purged is no reason to fail.
    const ImportHook state("GetCommState", &Refuse<HANDLE, DCB*>);
    const ImportHook timeouts("GetCommTimeouts", &Refuse<HANDLE, COMMTIMEOUTS*>);
    const ImportHook purge("PurgeComm", &Refuse<HANDLE, DWORD>);
    Enable(port);
    {
        const ImportHook hook("SetCommState", &Refuse<HANDLE, DCB*>);
        ExpectSteps(parser(), {{L"=BaudRate", {9600}, Failure("80042717", "Could not set DCB")}});
    }
    ExpectSteps(parser(), {{L"=BaudRate", {9600}, ""}});
    EXPECT_EQ(9600, port.BaudRate());
}

int threadsAllowed = 0;

HANDLE WINAPI AllowThreads(SECURITY_ATTRIBUTES* who, SIZE_T stack, LPTHREAD_START_ROUTINE entry,
                           void* argument, DWORD flags, DWORD* id) {
    if (threadsAllowed-- > 0) return CreateThread(who, stack, entry, argument, flags, id);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

// The parser's own reader, the port's reader and its writer: any of them may not come to life. The
// first one stays, so the next attempt needs one thread less.
TEST_F(LiveFaultTest, ThreadsThatCannotBeMade) {
    TestPort port;
    const ImportHook hook("CreateThread", AllowThreads);
    for (const int allowed : {0, 1, 0, 1}) {
        threadsAllowed = allowed;
        EXPECT_EQ(Failure("80040008", "Could not create thread"),
                  TryEnable(parser(), port.number()));
        EXPECT_EQ(0U, CommHandle(port.name()).error());
    }
    threadsAllowed = 2;
    Enable(port);
    EXPECT_EQ(0, threadsAllowed);
}

std::atomic<int> reads = 0;
std::atomic<bool> isReadFailing = false;
DWORD readError = 0;  // 0: the read claims too much instead

BOOL WINAPI FailRead(HANDLE file, void* buffer, DWORD size, DWORD* count, OVERLAPPED* overlapped) {
    EXPECT_EQ(256U, size);
    EXPECT_EQ(nullptr, overlapped);
    if (!isReadFailing) return ReadFile(file, buffer, size, count, overlapped);
    ++reads;
    *count = 257;
    SetLastError(readError);
    return readError == 0;
}

TEST_F(LiveFaultTest, AReadThatFailsIsTheLast) {
    TestPort port;
    const ImportHook hook("ReadFile", FailRead);
    const std::string at = std::to_string(port.number()) + "@4800";
    for (const DWORD error : {DWORD{21}, DWORD{0}, DWORD{ERROR_OPERATION_ABORTED}}) {
        SCOPED_TRACE(error);
        readError = error;
        reads = 0;
        const Listener listener(parser());
        Enable(port);
        port.Feed(kGgaLine);
        EXPECT_TRUE(WaitForStatus(at + " nmea fix"));
        listener->Clear();
        isReadFailing = true;
        EXPECT_TRUE(DispatchUntil([&] { return !listener->events().empty(); }));
        DispatchFor(500);
        EXPECT_EQ(at, StatusesOf(*listener));
        EXPECT_EQ(1U, listener->events().size());
        EXPECT_EQ(1, reads);
        isReadFailing = false;
        Disable();
        EXPECT_EQ(0U, CommHandle(port.name()).error());
    }
    Enable(port);
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(at + " nmea"));
}

std::atomic<int> writes = 0;

BOOL WINAPI FailWrite(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*) {
    ++writes;
    SetLastError(21);
    return FALSE;
}

TEST_F(LiveFaultTest, AWriteThatFailsIsTheLast) {
    TestPort port;
    const Listener listener(parser());
    Enable(port);
    const std::string at = std::to_string(port.number()) + "@4800";
    port.Feed(kGgaLine);
    EXPECT_TRUE(WaitForStatus(at + " nmea fix"));
    listener->Clear();
    writes = 0;
    const ImportHook hook("WriteFile", FailWrite);
    ExpectSteps(parser(), {{L"WriteData", {L"x"}, ""}});
    EXPECT_TRUE(DispatchUntil([&] { return StatusesOf(*listener) == at; }));
    EXPECT_EQ(1, writes);
    // Writing still succeeds as far as the caller is told: it only queues.
    Call(parser(), L"WriteData", {L"y"});
    DispatchFor(100);
    EXPECT_EQ(1, writes);
    Disable();
    EXPECT_EQ(0U, CommHandle(port.name()).error());
}

HWND WINAPI RefuseWindow(DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND,
                         HMENU, HINSTANCE, void*) {
    SetLastError(1158);
    return nullptr;
}

// Elsewhere windows cannot be made at all; here one parser gets none, and its neighbour does.
TEST_F(LiveFaultTest, AParserWithoutAWindow) {
    Microsoft::WRL::ComPtr<IDispatch> windowless;
    {
        const ImportHook hook("CreateWindowExW", RefuseWindow);
        windowless = CreateParser();
    }
    ASSERT_TRUE(windowless);
    const Listener listener(windowless.Get());
    TestPort port;
    EnablePort(windowless.Get(), port);
    port.Feed(kGgaLine);
    DispatchFor(300);
    EXPECT_EQ(0U, listener->events().size());
    ExpectSteps(windowless.Get(),
                {{L"=PortEnabled", {false}, ""}, {L"Parse", {L"$PKVRL,1\r\n"}, ""}});
    EXPECT_EQ(1U, listener->events().size());
}

}  // namespace

}  // namespace kavrel::tests
