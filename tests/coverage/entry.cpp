// The DLL's entry point where gcc counts which lines run: the DLL's own, and what writes the counts
// when the DLL goes.
#include <windows.h>

extern "C" {

BOOL WINAPI _DllMainCRTStartup(HINSTANCE instance, DWORD reason, void* reserved);
void __gcov_exit();

BOOL WINAPI CoverageEntry(HINSTANCE instance, DWORD reason, void* reserved) {
    const BOOL done = _DllMainCRTStartup(instance, reason, reserved);
    if (reason == DLL_PROCESS_DETACH) __gcov_exit();
    return done;
}

}  // extern "C"
