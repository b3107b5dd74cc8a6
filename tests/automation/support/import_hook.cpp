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

// In a table that the loader has filled in: names and addresses side by side.
void** PlaceIn(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, const char* name) {
    const auto* names = At<IMAGE_THUNK_DATA>(module, library.OriginalFirstThunk);
    auto* addresses = At<IMAGE_THUNK_DATA>(module, library.FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
        if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
        const auto* entry = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
        if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) {
            return reinterpret_cast<void**>(&addresses->u1.Function);
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

void** ImportedPlace(const char* name) {
    const HMODULE module = LoadedLibrary();
    const auto* headers = At<IMAGE_NT_HEADERS>(
        module, static_cast<size_t>(At<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& table =
        headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress);
    for (; library->Name != 0; ++library) {
        if (void** const place = PlaceIn(module, *library, name)) return place;
    }
    return nullptr;
}

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
