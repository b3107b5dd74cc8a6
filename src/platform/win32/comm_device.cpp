#include "platform/win32/comm_device.h"

#include <windows.h>

#include <atomic>

namespace kavrel {
namespace {

CommResult Result(BOOL isDone) {
    if (isDone != FALSE) return {};
    return {.isDone = false, .error = GetLastError()};
}

CommState FromPlatform(const DCB& dcb) {
    return {.BaudRate = dcb.BaudRate,
            .fBinary = dcb.fBinary != 0,
            .fParity = dcb.fParity != 0,
            .fOutxCtsFlow = dcb.fOutxCtsFlow != 0,
            .fOutxDsrFlow = dcb.fOutxDsrFlow != 0,
            .fDtrControl = static_cast<std::uint8_t>(dcb.fDtrControl),
            .fDsrSensitivity = dcb.fDsrSensitivity != 0,
            .fTXContinueOnXoff = dcb.fTXContinueOnXoff != 0,
            .fOutX = dcb.fOutX != 0,
            .fInX = dcb.fInX != 0,
            .fErrorChar = dcb.fErrorChar != 0,
            .fNull = dcb.fNull != 0,
            .fRtsControl = static_cast<std::uint8_t>(dcb.fRtsControl),
            .fAbortOnError = dcb.fAbortOnError != 0,
            .wReserved = dcb.wReserved,
            .XonLim = dcb.XonLim,
            .XoffLim = dcb.XoffLim,
            .ByteSize = dcb.ByteSize,
            .Parity = dcb.Parity,
            .StopBits = dcb.StopBits,
            .XonChar = dcb.XonChar,
            .XoffChar = dcb.XoffChar,
            .ErrorChar = dcb.ErrorChar,
            .EofChar = dcb.EofChar,
            .EvtChar = dcb.EvtChar};
}

DCB ToPlatform(const CommState& state) {
    DCB dcb{};
    dcb.DCBlength = sizeof dcb;
    dcb.BaudRate = state.BaudRate;
    dcb.fBinary = state.fBinary;
    dcb.fParity = state.fParity;
    dcb.fOutxCtsFlow = state.fOutxCtsFlow;
    dcb.fOutxDsrFlow = state.fOutxDsrFlow;
    dcb.fDtrControl = state.fDtrControl & 3U;
    dcb.fDsrSensitivity = state.fDsrSensitivity;
    dcb.fTXContinueOnXoff = state.fTXContinueOnXoff;
    dcb.fOutX = state.fOutX;
    dcb.fInX = state.fInX;
    dcb.fErrorChar = state.fErrorChar;
    dcb.fNull = state.fNull;
    dcb.fRtsControl = state.fRtsControl & 3U;
    dcb.fAbortOnError = state.fAbortOnError;
    dcb.wReserved = state.wReserved;
    dcb.XonLim = state.XonLim;
    dcb.XoffLim = state.XoffLim;
    dcb.ByteSize = state.ByteSize;
    dcb.Parity = state.Parity;
    dcb.StopBits = state.StopBits;
    dcb.XonChar = state.XonChar;
    dcb.XoffChar = state.XoffChar;
    dcb.ErrorChar = state.ErrorChar;
    dcb.EofChar = state.EofChar;
    dcb.EvtChar = state.EvtChar;
    return dcb;
}

// A call on a closed device fails with "invalid handle", as the platform's does, without asking the
// platform: Close takes the handle away before it closes it, so no call begins with a handle that
// may already be another's. What is left is a thread that is halted between fetching the handle and
// entering the call; only a lock held while reading could exclude that, and Close could not end a
// read then.
class Win32CommDevice final : public CommDevice {
  public:
    ~Win32CommDevice() override { Close(); }

    CommResult Open(const char16_t* name) override {
        static_assert(sizeof(wchar_t) == sizeof(char16_t));
        const HANDLE handle =
            CreateFileW(reinterpret_cast<const wchar_t*>(name), GENERIC_READ | GENERIC_WRITE, 0,
                        nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        const CommResult result = Result(handle != INVALID_HANDLE_VALUE);
        handle_.store(handle, std::memory_order_release);
        return result;
    }

    void Close() override {
        const HANDLE handle = handle_.exchange(INVALID_HANDLE_VALUE, std::memory_order_acq_rel);
        if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    }

    CommResult GetState(CommState& state) override {
        DCB dcb{};
        dcb.DCBlength = sizeof dcb;
        const CommResult result = Result(GetCommState(handle(), &dcb));
        if (result) state = FromPlatform(dcb);
        return result;
    }

    CommResult SetState(const CommState& state) override {
        DCB dcb = ToPlatform(state);
        return Result(SetCommState(handle(), &dcb));
    }

    CommResult GetTimeouts(CommTimeouts& timeouts) override {
        COMMTIMEOUTS platform{};
        const CommResult result = Result(GetCommTimeouts(handle(), &platform));
        if (!result) return result;
        timeouts = {.ReadIntervalTimeout = platform.ReadIntervalTimeout,
                    .ReadTotalTimeoutMultiplier = platform.ReadTotalTimeoutMultiplier,
                    .ReadTotalTimeoutConstant = platform.ReadTotalTimeoutConstant,
                    .WriteTotalTimeoutMultiplier = platform.WriteTotalTimeoutMultiplier,
                    .WriteTotalTimeoutConstant = platform.WriteTotalTimeoutConstant};
        return result;
    }

    CommResult SetTimeouts(const CommTimeouts& timeouts) override {
        COMMTIMEOUTS platform{.ReadIntervalTimeout = timeouts.ReadIntervalTimeout,
                              .ReadTotalTimeoutMultiplier = timeouts.ReadTotalTimeoutMultiplier,
                              .ReadTotalTimeoutConstant = timeouts.ReadTotalTimeoutConstant,
                              .WriteTotalTimeoutMultiplier = timeouts.WriteTotalTimeoutMultiplier,
                              .WriteTotalTimeoutConstant = timeouts.WriteTotalTimeoutConstant};
        return Result(SetCommTimeouts(handle(), &platform));
    }

    CommResult Purge(std::uint32_t flags) override { return Result(PurgeComm(handle(), flags)); }

    CommResult Escape(CommFunction function) override {
        return Result(EscapeCommFunction(handle(), static_cast<DWORD>(function)));
    }

    CommResult GetModemStatus(std::uint32_t& status) override {
        DWORD platform = 0;
        const CommResult result = Result(GetCommModemStatus(handle(), &platform));
        status = platform;
        return result;
    }

    CommResult SetMask(std::uint32_t events) override {
        return Result(SetCommMask(handle(), events));
    }

    CommResult WaitEvent(std::uint32_t& events) override {
        DWORD platform = 0;
        const CommResult result = Result(WaitCommEvent(handle(), &platform, nullptr));
        events = platform;
        return result;
    }

    CommResult Read(std::span<std::uint8_t> buffer, std::size_t& count) override {
        DWORD read = 0;
        const CommResult result = Result(
            ReadFile(handle(), buffer.data(), static_cast<DWORD>(buffer.size()), &read, nullptr));
        count = read;
        return result;
    }

    CommResult Write(std::span<const std::uint8_t> bytes, std::size_t& count) override {
        DWORD written = 0;
        const CommResult result = Result(
            WriteFile(handle(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        count = written;
        return result;
    }

  private:
    HANDLE handle() const { return handle_.load(std::memory_order_acquire); }

    std::atomic<HANDLE> handle_{INVALID_HANDLE_VALUE};
};

}  // namespace

std::unique_ptr<CommDevice> MakeWin32CommDevice() {
    return std::make_unique<Win32CommDevice>();
}

}  // namespace kavrel
