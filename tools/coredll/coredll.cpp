// Functions of the device's coredll.dll whose shape differs from the desktop's: Device<Name> is
// exported as <Name>.
#include <windows.h>

#include <array>

extern "C" {

// The device's one function behind SetEvent, ResetEvent and PulseEvent.
BOOL WINAPI DeviceEventModify(HANDLE event, DWORD action) {
    constexpr DWORD kPulse = 1;
    constexpr DWORD kReset = 2;
    constexpr DWORD kSet = 3;
    switch (action) {
        case kPulse:
            return PulseEvent(event);
        case kReset:
            return ResetEvent(event);
        case kSet:
            return SetEvent(event);
        default:
            SetLastError(ERROR_INVALID_PARAMETER);
            return FALSE;
    }
}

// The device takes the name of an entry point as wide text.
FARPROC WINAPI DeviceGetProcAddressW(HMODULE module, const wchar_t* name) {
    std::array<char, 256> narrow{};
    if (WideCharToMultiByte(CP_ACP, 0, name, -1, narrow.data(), narrow.size(), nullptr, nullptr) ==
        0) {
        return nullptr;
    }
    return GetProcAddress(module, narrow.data());
}

// The device has another handle that stands for the calling process.
BOOL WINAPI DeviceTerminateProcess(HANDLE process, UINT exitCode) {
    const HANDLE deviceCurrentProcess = reinterpret_cast<HANDLE>(66);
    return TerminateProcess(process == deviceCurrentProcess ? GetCurrentProcess() : process,
                            exitCode);
}

// The device takes no access mask; a desktop's handle with the mask 0 can do nothing. The device
// also takes a path that begins with a backslash.
const wchar_t* DesktopPath(const wchar_t* path) {
    return path != nullptr && *path == L'\\' ? path + 1 : path;
}

LSTATUS WINAPI DeviceRegOpenKeyExW(HKEY key, const wchar_t* path, DWORD options, REGSAM,
                                   HKEY* opened) {
    return RegOpenKeyExW(key, DesktopPath(path), options, MAXIMUM_ALLOWED, opened);
}

LSTATUS WINAPI DeviceRegCreateKeyExW(HKEY key, const wchar_t* path, DWORD reserved,
                                     wchar_t* keyClass, DWORD options, REGSAM,
                                     SECURITY_ATTRIBUTES* security, HKEY* created,
                                     DWORD* disposition) {
    return RegCreateKeyExW(key, DesktopPath(path), reserved, keyClass, options, MAXIMUM_ALLOWED,
                           security, created, disposition);
}

}  // extern "C"
