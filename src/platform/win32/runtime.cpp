// The whole C++ runtime of the DLL: start-up, memory, and what the compiler calls by itself.
//
// The DLL links no C or C++ runtime library, so that the device flavour, which has none, is the
// same program. Whatever else the linker asks for is something that a device cannot offer.
// Compiled with -fno-builtin, so that no function here is turned into a call of itself.

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "platform/win32/device.h"

namespace {

using Procedure = void (*)();

// Running out of memory inside the engine, or breaking an invariant of the standard library, is a
// controlled stop: going on would corrupt the host's data.
[[noreturn]] void Stop() {
    constexpr UINT kExitCode = 3;
    for (;;)
        TerminateProcess(kavrel::CurrentProcess(), kExitCode);
}

}  // namespace

// The names are those that the compiler and the standard library call.
// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* reserved);

// The linker's list of static constructors: a count or -1, the functions, a null.
extern Procedure __CTOR_LIST__[];

int _fltused = 0;
void* __dso_handle = nullptr;

// No object with static storage has a destructor to run: product code keeps to constinit tables.
int __cxa_atexit(void (*)(void*), void*, void*) {
    return 0;
}
int atexit(Procedure) {
    return 0;
}

void __cxa_pure_virtual() {
    Stop();
}

BOOL WINAPI _DllMainCRTStartup(HINSTANCE instance, DWORD reason, void* reserved) {
    if (reason == DLL_PROCESS_ATTACH) {
        std::size_t count = 0;
        while (__CTOR_LIST__[count + 1] != nullptr)
            ++count;
        for (; count != 0; --count)
            __CTOR_LIST__[count]();
    }
    return DllMain(instance, reason, reserved);
}

// GCC merges sin(x) and cos(x) of the same x into this, which the platform does not have.
double sin(double x);
double cos(double x);
void sincos(double x, double* sine, double* cosine) {
    *sine = sin(x);
    *cosine = cos(x);
}

}  // extern "C"

void* operator new(std::size_t size) {
    void* const memory = malloc(size != 0 ? size : 1);
    if (memory == nullptr) Stop();
    return memory;
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return malloc(size != 0 ? size : 1);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return malloc(size != 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    free(memory);
}
void operator delete[](void* memory) noexcept {
    free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    free(memory);
}

namespace std {

const nothrow_t nothrow{};

void __throw_length_error(const char*) {
    Stop();
}
void __throw_logic_error(const char*) {
    Stop();
}
void __throw_out_of_range(const char*) {
    Stop();
}
void __throw_out_of_range_fmt(const char*, ...) {
    Stop();
}
void __throw_bad_alloc() {
    Stop();
}
void __throw_bad_array_new_length() {
    Stop();
}
void __throw_bad_optional_access() {
    Stop();
}

}  // namespace std
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
