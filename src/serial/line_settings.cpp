#include "serial/line_settings.h"

namespace kavrel {
namespace {

constexpr std::uint8_t kDisable = 0;
constexpr std::uint8_t kEnable = 1;
constexpr std::uint8_t kHandshake = 2;

constexpr char kXon = 0x11;
constexpr char kXoff = 0x13;

constexpr std::uint32_t kReadTimeoutMs = 200;

std::uint8_t LineControl(bool isHandshake, bool isOn) {
    if (isHandshake) return kHandshake;
    return isOn ? kEnable : kDisable;
}

}  // namespace

void WriteControlBlock(const LineSettings& settings, CommState& state) {
    const bool usesRts = (settings.handshake & kHandshakeRtsCts) != 0;
    const bool usesDtr = (settings.handshake & kHandshakeDtrDsr) != 0;
    const bool usesXon = (settings.handshake & kHandshakeXonXoff) != 0;

    state.BaudRate = settings.baudRate;
    state.ByteSize = static_cast<std::uint8_t>(settings.byteSize);
    state.Parity = static_cast<std::uint8_t>(settings.parity);
    state.StopBits = static_cast<std::uint8_t>(settings.stopBits);
    state.fParity = true;  // also without parity: drivers see what they always saw

    state.fOutxCtsFlow = usesRts;
    state.fRtsControl = LineControl(usesRts, settings.rts);
    state.fOutxDsrFlow = false;  // also with the handshake: what is sent does not wait for DSR
    state.fDtrControl = LineControl(usesDtr, settings.dtr);
    state.fDsrSensitivity = usesDtr;
    state.fOutX = usesXon;
    state.fInX = usesXon;
    if (usesXon) {
        state.XonChar = kXon;
        state.XoffChar = kXoff;
    }

    state.fNull = false;
    state.fAbortOnError = false;
    state.wReserved = 0;
    state.ErrorChar = 0;
    state.EvtChar = 0;
}

void WriteTimeouts(TimeoutMode mode, std::uint32_t writeTimeoutMs, CommTimeouts& timeouts) {
    if (mode == TimeoutMode::FirstByte || mode == TimeoutMode::Fill) {
        const std::uint32_t others = mode == TimeoutMode::FirstByte ? 0xFFFFFFFF : 0;
        timeouts.ReadIntervalTimeout = others;
        timeouts.ReadTotalTimeoutMultiplier = others;
        timeouts.ReadTotalTimeoutConstant = kReadTimeoutMs;
    }
    timeouts.WriteTotalTimeoutMultiplier = 1;
    timeouts.WriteTotalTimeoutConstant = writeTimeoutMs;
}

}  // namespace kavrel
