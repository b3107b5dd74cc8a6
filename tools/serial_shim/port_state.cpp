#include "port_state.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace ttysim {

namespace {

// The kernel's major numbers of pseudo terminals.
constexpr unsigned kFirstMajor = 136;
constexpr unsigned kLastMajor = 143;
constexpr unsigned kMinorsPerMajor = 256;

std::atomic<PortState*> mapped[kMaxPorts];

// By system calls: the library's open and close are what the shim replaces.
PortState* Map(int number) {
    const char* const folder = std::getenv("TTYSIM_DIR");
    if (folder == nullptr) return nullptr;
    char path[4096];
    std::snprintf(path, sizeof path, "%s/%d", folder, number);
    const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC, 0);
    if (file < 0) return nullptr;
    void* const memory = mmap(nullptr, sizeof(PortState), PROT_READ | PROT_WRITE, MAP_SHARED,
                              static_cast<int>(file), 0);
    syscall(SYS_close, file);
    return memory == MAP_FAILED ? nullptr : static_cast<PortState*>(memory);
}

PortState* MappedState(int number) {
    PortState* known = mapped[number].load();
    if (known != nullptr) return known;
    PortState* const state = Map(number);
    if (state != nullptr && !mapped[number].compare_exchange_strong(known, state)) {
        munmap(state, sizeof(PortState));
        return known;
    }
    return state;
}

}  // namespace

int NumberOf(int file) {
    struct stat status = {};
    if (fstat(file, &status) != 0 || !S_ISCHR(status.st_mode)) return -1;
    const unsigned major = ::major(status.st_rdev);
    if (major < kFirstMajor || major > kLastMajor) return -1;
    const unsigned number = (major - kFirstMajor) * kMinorsPerMajor + ::minor(status.st_rdev);
    return number < kMaxPorts ? static_cast<int>(number) : -1;
}

PortState* StateOf(int file) {
    const int kept = errno;
    const int number = NumberOf(file);
    PortState* const state = number < 0 ? nullptr : MappedState(number);
    errno = kept;
    return state != nullptr && state->isServed != 0 ? state : nullptr;
}

}  // namespace ttysim
