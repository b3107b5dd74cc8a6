// The module: what the whole DLL knows of itself while it is loaded.
#pragma once

#include <windows.h>

namespace kavrel {

// The instance handle that the platform gave the DLL.
HINSTANCE ModuleInstance();
void SetModuleInstance(HINSTANCE instance);

// The DLL's own path, zero-terminated; empty when the platform cannot tell.
struct ModulePath {
    wchar_t text[MAX_PATH + 1];
};
ModulePath PathOfModule(HMODULE module);

// A count in `path` of the characters up to and including the last backslash.
unsigned DirectoryLength(const ModulePath& path);

}  // namespace kavrel
