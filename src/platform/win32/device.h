// Where a device differs from a desktop: one line each, nothing else of the library asks.
#pragma once

#include <windows.h>

#ifdef UNDER_CE
extern "C" __declspec(dllimport) BOOL WINAPI EventModify(HANDLE event, DWORD change);
extern "C" __declspec(dllimport) FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name);
#endif

namespace kavrel {

#ifdef UNDER_CE

// Registry keys are opened without an access mask.
inline constexpr REGSAM kRegistryAccess = 0;

// A key's path may begin with a backslash; desktops refuse one.
inline const wchar_t* KeyPath(const wchar_t* path) {
    return path;
}

// The operating system's core library, whose directory is the system's.
inline constexpr const wchar_t* kCoreLibrary = L"coredll.dll";

// Functions are looked up by wide names.
inline FARPROC FindFunction(HMODULE module, const wchar_t* wideName, const char*) {
    return GetProcAddressW(module, wideName);
}

// The usual functions for these are inline there, in headers that other compilers do not have.
inline void SignalEvent(HANDLE event) {
    EventModify(event, 3);
}
inline void ResetEventSignal(HANDLE event) {
    EventModify(event, 2);
}
inline const void* ResourceData(HGLOBAL resource) {
    return resource;
}
inline HANDLE CurrentProcess() {
    return reinterpret_cast<HANDLE>(66);
}

#else

inline constexpr REGSAM kRegistryAccess = MAXIMUM_ALLOWED;
inline const wchar_t* KeyPath(const wchar_t* path) {
    return *path == L'\\' ? path + 1 : path;
}
inline constexpr const wchar_t* kCoreLibrary = L"kernel32.dll";
inline FARPROC FindFunction(HMODULE module, const wchar_t*, const char* narrowName) {
    return GetProcAddress(module, narrowName);
}
inline void SignalEvent(HANDLE event) {
    SetEvent(event);
}
inline void ResetEventSignal(HANDLE event) {
    ResetEvent(event);
}
inline const void* ResourceData(HGLOBAL resource) {
    return LockResource(resource);
}
inline HANDLE CurrentProcess() {
    return GetCurrentProcess();
}

#endif

}  // namespace kavrel
