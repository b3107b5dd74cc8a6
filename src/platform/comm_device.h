// CommDevice: a serial port as the operating system offers it. One method per platform call that
// the library makes, with the platform's field names, codes and error numbers; no logic.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kavrel {

// What a platform call came to. A call can fail without saying why: error number 0.
struct [[nodiscard]] CommResult {
    bool isDone = true;
    std::uint32_t error = 0;

    explicit operator bool() const { return isDone; }
};

// NOLINTBEGIN(readability-identifier-naming): the fields have the platform's names

// The device control block (DCB).
struct CommState {
    std::uint32_t BaudRate = 0;
    bool fBinary = false;
    bool fParity = false;
    bool fOutxCtsFlow = false;
    bool fOutxDsrFlow = false;
    std::uint8_t fDtrControl = 0;  // 0 disable, 1 enable, 2 handshake
    bool fDsrSensitivity = false;
    bool fTXContinueOnXoff = false;
    bool fOutX = false;
    bool fInX = false;
    bool fErrorChar = false;
    bool fNull = false;
    std::uint8_t fRtsControl = 0;  // 0 disable, 1 enable, 2 handshake
    bool fAbortOnError = false;
    std::uint16_t wReserved = 0;
    std::uint16_t XonLim = 0;
    std::uint16_t XoffLim = 0;
    std::uint8_t ByteSize = 0;
    std::uint8_t Parity = 0;
    std::uint8_t StopBits = 0;
    char XonChar = 0;
    char XoffChar = 0;
    char ErrorChar = 0;
    char EofChar = 0;
    char EvtChar = 0;

    bool operator==(const CommState&) const = default;
};

// Milliseconds.
struct CommTimeouts {
    std::uint32_t ReadIntervalTimeout = 0;
    std::uint32_t ReadTotalTimeoutMultiplier = 0;
    std::uint32_t ReadTotalTimeoutConstant = 0;
    std::uint32_t WriteTotalTimeoutMultiplier = 0;
    std::uint32_t WriteTotalTimeoutConstant = 0;

    bool operator==(const CommTimeouts&) const = default;
};

// NOLINTEND(readability-identifier-naming)

// Codes of EscapeCommFunction.
enum class CommFunction : std::uint32_t {
    SetRts = 3,
    ClrRts = 4,
    SetDtr = 5,
    ClrDtr = 6,
    SetBreak = 8,
    ClrBreak = 9,
    SetIr = 10,
    ClrIr = 11,
};

// Flags of PurgeComm.
inline constexpr std::uint32_t kPurgeTxClear = 4;
inline constexpr std::uint32_t kPurgeRxClear = 8;

// Bits of GetCommModemStatus.
inline constexpr std::uint32_t kModemCtsOn = 0x10;
inline constexpr std::uint32_t kModemDsrOn = 0x20;
inline constexpr std::uint32_t kModemRingOn = 0x40;
inline constexpr std::uint32_t kModemRlsdOn = 0x80;

// Event mask of changes of the four input lines.
inline constexpr std::uint32_t kCommLineEvents = 0x138;

// Thread safety: once open, one thread may read, one write, one wait for line events, and any do
// the rest, all at a time. Close may be called by any of them and ends what the others wait for, in
// time; calls after it fail, also those of a thread that has not heard of it.
class CommDevice {
  public:
    virtual ~CommDevice() = default;

    // `name` is the device's name ("COM3:"), zero-terminated. REQUIRES: not open.
    virtual CommResult Open(const char16_t* name) = 0;
    virtual void Close() = 0;

    virtual CommResult GetState(CommState& state) = 0;
    virtual CommResult SetState(const CommState& state) = 0;
    virtual CommResult GetTimeouts(CommTimeouts& timeouts) = 0;
    virtual CommResult SetTimeouts(const CommTimeouts& timeouts) = 0;
    virtual CommResult Purge(std::uint32_t flags) = 0;
    virtual CommResult Escape(CommFunction function) = 0;
    virtual CommResult GetModemStatus(std::uint32_t& status) = 0;
    virtual CommResult SetMask(std::uint32_t events) = 0;
    virtual CommResult WaitEvent(std::uint32_t& events) = 0;

    // `count` becomes the number of bytes that the platform reports, whatever the buffer holds.
    virtual CommResult Read(std::span<std::uint8_t> buffer, std::size_t& count) = 0;
    virtual CommResult Write(std::span<const std::uint8_t> bytes, std::size_t& count) = 0;
};

}  // namespace kavrel
