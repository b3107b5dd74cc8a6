#include "platform/win32/comm_device.h"

#include <windows.h>

#include <atomic>

namespace kavrel {
namespace {

CommResult Result(BOOL isDone) {
    if (isDone != FALSE) return {};
    return {.isDone = false, .error = GetLastError()};
}

// Between the engine's line state and the platform's control block, whose fields have the same
// names.
template <class To, class From>
void CopyLineState(To& to, const From& from) {
    to.BaudRate = from.BaudRate;
    to.fBinary = from.fBinary != 0;
    to.fParity = from.fParity != 0;
    to.fOutxCtsFlow = from.fOutxCtsFlow != 0;
    to.fOutxDsrFlow = from.fOutxDsrFlow != 0;
    to.fDtrControl = from.fDtrControl & 3U;
    to.fDsrSensitivity = from.fDsrSensitivity != 0;
    to.fTXContinueOnXoff = from.fTXContinueOnXoff != 0;
    to.fOutX = from.fOutX != 0;
    to.fInX = from.fInX != 0;
    to.fErrorChar = from.fErrorChar != 0;
    to.fNull = from.fNull != 0;
    to.fRtsControl = from.fRtsControl & 3U;
    to.fAbortOnError = from.fAbortOnError != 0;
    to.wReserved = from.wReserved;
    to.XonLim = from.XonLim;
    to.XoffLim = from.XoffLim;
    to.ByteSize = from.ByteSize;
    to.Parity = from.Parity;
    to.StopBits = from.StopBits;
    to.XonChar = from.XonChar;
    to.XoffChar = from.XoffChar;
    to.ErrorChar = from.ErrorChar;
    to.EofChar = from.EofChar;
    to.EvtChar = from.EvtChar;
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
        if (result) CopyLineState(state, dcb);
        return result;
    }

    CommResult SetState(const CommState& state) override {
        DCB dcb{};
        dcb.DCBlength = sizeof dcb;
        CopyLineState(dcb, state);
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
