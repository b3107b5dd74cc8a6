#include "serial/line_settings.h"

#include <gtest/gtest.h>

namespace kavrel {
namespace {

// A block as found, with every switch on or every switch off.
CommState Found(bool isOn) {
    const std::uint8_t control = isOn ? 3 : 0;
    return {.BaudRate = 1,
            .fBinary = isOn,
            .fParity = isOn,
            .fOutxCtsFlow = isOn,
            .fOutxDsrFlow = isOn,
            .fDtrControl = control,
            .fDsrSensitivity = isOn,
            .fTXContinueOnXoff = isOn,
            .fOutX = isOn,
            .fInX = isOn,
            .fErrorChar = isOn,
            .fNull = isOn,
            .fRtsControl = control,
            .fAbortOnError = isOn,
            .wReserved = 77,
            .XonLim = 2048,
            .XoffLim = 512,
            .ByteSize = 1,
            .Parity = 9,
            .StopBits = 9,
            .XonChar = 'a',
            .XoffChar = 'b',
            .ErrorChar = 'c',
            .EofChar = 'd',
            .EvtChar = 'e'};
}

struct FlowCase {
    std::uint32_t handshake;
    bool rts;
    bool dtr;
    // Expected.
    bool fOutxCtsFlow;
    std::uint8_t fRtsControl;
    std::uint8_t fDtrControl;
    bool fDsrSensitivity;
    bool isXon;
};

TEST(LineSettings, ControlBlock) {
    constexpr FlowCase kCases[] = {
        {0, false, false, false, 0, 0, false, false}, {0, true, false, false, 1, 0, false, false},
        {0, false, true, false, 0, 1, false, false},  {0, true, true, false, 1, 1, false, false},
        {1, false, false, true, 2, 0, false, false},  {1, true, true, true, 2, 1, false, false},
        {2, false, false, false, 0, 2, true, false},  {2, true, true, false, 1, 2, true, false},
        {3, true, false, true, 2, 2, true, false},    {4, false, true, false, 0, 1, false, true},
        {5, false, true, true, 2, 1, false, true},    {6, true, false, false, 1, 2, true, true},
        {7, false, false, true, 2, 2, true, true},
    };
    for (const FlowCase& flow : kCases) {
        for (const bool isOn : {false, true}) {
            SCOPED_TRACE(testing::Message() << "handshake " << flow.handshake << " rts " << flow.rts
                                            << " dtr " << flow.dtr << " found " << isOn);
            const CommState found = Found(isOn);
            CommState expected = found;
            expected.BaudRate = 115200;
            expected.fParity = true;
            expected.fOutxCtsFlow = flow.fOutxCtsFlow;
            expected.fOutxDsrFlow = false;
            expected.fDtrControl = flow.fDtrControl;
            expected.fDsrSensitivity = flow.fDsrSensitivity;
            expected.fOutX = flow.isXon;
            expected.fInX = flow.isXon;
            expected.fNull = false;
            expected.fRtsControl = flow.fRtsControl;
            expected.fAbortOnError = false;
            expected.wReserved = 0;
            expected.ByteSize = 7;
            expected.Parity = 2;
            expected.StopBits = 1;
            expected.XonChar = flow.isXon ? 0x11 : found.XonChar;
            expected.XoffChar = flow.isXon ? 0x13 : found.XoffChar;
            expected.ErrorChar = 0;
            expected.EvtChar = 0;

            CommState written = found;
            WriteControlBlock({.baudRate = 115200,
                               .parity = 0x102,  // the low byte counts
                               .stopBits = 0x201,
                               .byteSize = 0x307,
                               .handshake = flow.handshake,
                               .rts = flow.rts,
                               .dtr = flow.dtr},
                              written);
            EXPECT_EQ(written, expected);
        }
    }
}

TEST(LineSettings, Defaults) {
    CommState written;
    WriteControlBlock({}, written);
    EXPECT_EQ(
        written,
        (CommState{
            .BaudRate = 9600, .fParity = true, .fDtrControl = 1, .fRtsControl = 1, .ByteSize = 8}));
}

TEST(LineSettings, Timeouts) {
    const struct {
        std::uint32_t mode;
        CommTimeouts expected;
    } kCases[] = {
        {0, {1, 2, 3, 1, 70}},
        {1, {0xFFFFFFFF, 0xFFFFFFFF, 200, 1, 70}},
        {2, {0, 0, 200, 1, 70}},
        {3, {1, 2, 3, 1, 70}},
    };
    for (const auto& [mode, expected] : kCases) {
        CommTimeouts timeouts{1, 2, 3, 4, 5};
        WriteTimeouts(static_cast<TimeoutMode>(mode), 70, timeouts);
        EXPECT_EQ(timeouts, expected) << "mode " << mode;
    }
}

}  // namespace
}  // namespace kavrel
