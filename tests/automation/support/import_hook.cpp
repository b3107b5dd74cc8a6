#include "automation/support/import_hook.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "automation/support/library.h"

namespace kavrel::tests {

namespace {

template <typename T>
T* At(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<char*>(module) + offset);
}

// The place in the DLL's import table where the address of that function stands, from whichever
// library it comes; null when the DLL does not import it. The loader has filled in the tables:
// names and addresses are side by side.
void** ImportedPlace(const char* name) {
    const HMODULE module = LoadedLibrary();
    const auto* headers = At<IMAGE_NT_HEADERS>(
        module, static_cast<size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& table =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto* names = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* addresses = At<void*>(module, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* entry = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::strcmp(entry->Name, name) == 0) return addresses;
        }
    }
    return nullptr;
}

void Write(void** place, void* address) {
    DWORD protection = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &protection);
    InterlockedExchangePointer(place, address);
    VirtualProtect(place, sizeof *place, protection, &protection);
}

}  // namespace

ImportHookBase::ImportHookBase(const char* name, void* replacement) : place_(ImportedPlace(name)) {
    if (place_ == nullptr) {
        ADD_FAILURE() << "the DLL does not import " << name;
        return;
    }
    original_ = *place_;
    Write(place_, replacement);
}

ImportHookBase::~ImportHookBase() {
    if (place_ != nullptr) Write(place_, original_);
}

}  // namespace kavrel::tests
