// Preloaded into Wine's Unix side, programs and server, this gives pseudo terminals what they lack
// as serial ports: modem lines, breaks, opening by one program at a time, and going away.
//
// It replaces the C library's open, close, read and ioctl, and leaves every file alone that is not
// a pseudo terminal with a state (port_state.h). Everything may be called by any thread, and before
// this library's own initialisation, so there are no objects with constructors.
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/serial.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstring>

#include "port_state.h"

using ttysim::PortState;

namespace {

constexpr std::uint32_t kOutputs = TIOCM_DTR | TIOCM_RTS;

// The C library's own function, which the one of this library hides.
template <typename Function>
Function* Hidden(std::atomic<Function*>& known, const char* name) {
    Function* function = known.load();
    if (function == nullptr) {
        function = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
        known = function;
    }
    return function;
}

std::atomic<int (*)(const char*, int, ...)> hiddenOpen;
std::atomic<int (*)(const char*, int, ...)> hiddenOpen64;
std::atomic<int (*)(int)> hiddenClose;
std::atomic<ssize_t (*)(int, void*, size_t)> hiddenRead;
std::atomic<int (*)(int, unsigned long, ...)> hiddenIoctl;

// Wine's server opens the files of all its clients, so it alone knows which port is in use.
constexpr int kMaxFiles = 65536;
std::atomic<int> portOfFile[kMaxFiles];  // the port's number + 1; 0: none
std::atomic<bool> isInUse[ttysim::kMaxPorts];

bool IsServer() {
    return std::strncmp(program_invocation_short_name, "wineserver", 10) == 0;
}

// A port is nobody's terminal. Wine's server, which has none, would take the first port that it opens
// for its own, and be hung up when that goes away.
constexpr int kNobodysTerminal = O_NOCTTY;

// Passes the opened file on when nobody else has the port.
int Claim(int file) {
    if (file < 0 || !IsServer() || ttysim::StateOf(file) == nullptr) return file;
    const int number = ttysim::NumberOf(file);
    if (file >= kMaxFiles || isInUse[number].exchange(true)) {
        Hidden(hiddenClose, "close")(file);
        errno = EACCES;
        return -1;
    }
    portOfFile[file] = number + 1;
    return file;
}

void GiveBack(int file) {
    if (file < 0 || file >= kMaxFiles) return;
    const int port = portOfFile[file].exchange(0);
    if (port != 0) isInUse[port - 1] = false;
}

bool IsOfSerialLines(unsigned long request) {
    switch (request) {
        case TIOCMGET:
        case TIOCMSET:
        case TIOCMBIS:
        case TIOCMBIC:
        case TIOCGICOUNT:
        case TIOCSBRK:
        case TIOCCBRK:
            return true;
        default:
            return false;
    }
}

int DoSerialRequest(PortState& port, unsigned long request, void* argument) {
    if (port.isUnplugged != 0) {
        errno = EIO;
        return -1;
    }
    auto* const lines = static_cast<int*>(argument);
    switch (request) {
        case TIOCMGET:
            *lines = static_cast<int>(port.inputs | port.outputs);
            break;
        case TIOCMSET:
            port.outputs = static_cast<std::uint32_t>(*lines) & kOutputs;
            break;
        case TIOCMBIS:
            port.outputs |= static_cast<std::uint32_t>(*lines) & kOutputs;
            break;
        case TIOCMBIC:
            port.outputs &= ~static_cast<std::uint32_t>(*lines);
            break;
        case TIOCGICOUNT:
            *static_cast<serial_icounter_struct*>(argument) = {};
            break;
        case TIOCSBRK:
            ++port.breaks;
            break;
        default:
            break;
    }
    return 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Claim(Hidden(hiddenOpen, "open")(path, flags | kNobodysTerminal, mode));
}

int open64(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const auto mode = va_arg(more, mode_t);
    va_end(more);
    return Claim(Hidden(hiddenOpen64, "open64")(path, flags | kNobodysTerminal, mode));
}

int close(int file) {
    // Before the file is closed: its number may be another thread's the moment after.
    GiveBack(file);
    return Hidden(hiddenClose, "close")(file);
}

// A terminal whose other end has gone reads as an endless end of file. A device fails.
ssize_t read(int file, void* buffer, size_t size) {
    const ssize_t count = Hidden(hiddenRead, "read")(file, buffer, size);
    if (count > 0 || size == 0) return count;
    const PortState* const port = ttysim::StateOf(file);
    if (port == nullptr || port->isUnplugged == 0) return count;
    errno = EIO;
    return -1;
}

int ioctl(int file, unsigned long request, ...) {
    va_list more;
    va_start(more, request);
    void* const argument = va_arg(more, void*);
    va_end(more);
    PortState* const port = IsOfSerialLines(request) ? ttysim::StateOf(file) : nullptr;
    if (port != nullptr) return DoSerialRequest(*port, request, argument);
    return Hidden(hiddenIoctl, "ioctl")(file, request, argument);
}

}  // extern "C"
