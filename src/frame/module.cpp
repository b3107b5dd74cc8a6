#include "frame/module.h"

namespace kavrel {
namespace {

constinit HINSTANCE moduleInstance = nullptr;

}  // namespace

HINSTANCE ModuleInstance() {
    return moduleInstance;
}

void SetModuleInstance(HINSTANCE instance) {
    moduleInstance = instance;
}

ModulePath PathOfModule(HMODULE module) {
    ModulePath path;
    const DWORD length = GetModuleFileNameW(module, path.text, MAX_PATH);
    path.text[length] = L'\0';
    return path;
}

unsigned DirectoryLength(const ModulePath& path) {
    unsigned length = 0;
    for (unsigned i = 0; path.text[i] != L'\0'; ++i) {
        if (path.text[i] == L'\\') length = i + 1;
    }
    return length;
}

}  // namespace kavrel
