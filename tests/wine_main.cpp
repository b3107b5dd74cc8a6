// The main program of every GoogleTest program that runs under Wine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>

namespace {

// Without this a crash starts the debugger, and the exit code that comes back is a random 0 or 5.
LONG WINAPI EndWithExitCode99(EXCEPTION_POINTERS* info) {
    std::fprintf(stderr, "crash: exception %08lx at %p\n", info->ExceptionRecord->ExceptionCode,
                 info->ExceptionRecord->ExceptionAddress);
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), 99);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int main(int argc, char** argv) {
    SetUnhandledExceptionFilter(EndWithExitCode99);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
