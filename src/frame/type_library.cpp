#include "frame/type_library.h"

#include <oleauto.h>

#include <algorithm>
#include <string_view>

#include "base/library_lock.h"
#include "frame/module.h"
#include "platform/win32/device.h"

namespace kavrel {
namespace {

constinit ITypeLib* keptLibrary = nullptr;

// Puts ".tlb" in the place of the extension.
void ReplaceExtension(ModulePath& path) {
    constexpr std::wstring_view kExtension = L".tlb";
    const std::wstring_view text(path.text);
    const std::size_t dot = std::min(text.rfind(L'.'), text.size());
    const std::size_t start = std::min<std::size_t>(dot, MAX_PATH - kExtension.size());
    *std::copy(kExtension.begin(), kExtension.end(), path.text + start) = L'\0';
}

// Loads the type library and leaves in `path` where it was found.
HRESULT LoadTypeLibrary(ModulePath& path, ComRef<ITypeLib>& library) {
    path = PathOfModule(ModuleInstance());
    const HRESULT result = LoadTypeLib(path.text, library.Receive());
    if (SUCCEEDED(result)) return result;

    ReplaceExtension(path);
    return LoadTypeLib(path.text, library.Receive());
}

HRESULT GetKeptLibrary(ITypeLib*& library) {
    if (keptLibrary == nullptr) {
        ModulePath path;
        ComRef<ITypeLib> loaded;
        const HRESULT result = LoadTypeLibrary(path, loaded);
        if (FAILED(result)) return result;

        const LibraryLockScope lock;
        if (keptLibrary == nullptr) keptLibrary = loaded.Detach();
    }
    library = keptLibrary;
    return S_OK;
}

}  // namespace

HRESULT RegisterTypeLibrary() {
    ModulePath path;
    ComRef<ITypeLib> library;
    const HRESULT result = LoadTypeLibrary(path, library);
    if (FAILED(result)) return result;

    ModulePath directory = PathOfModule(ModuleInstance());
    const unsigned length = DirectoryLength(directory);
    directory.text[length > 0 ? length - 1 : 0] = L'\0';
    return RegisterTypeLib(library.get(), path.text, directory.text);
}

HRESULT UnregisterTypeLibrary() {
    ModulePath path;
    ComRef<ITypeLib> library;
    HRESULT result = LoadTypeLibrary(path, library);
    if (FAILED(result)) return result;

    TLIBATTR* attributes = nullptr;
    result = library->GetLibAttr(&attributes);
    if (FAILED(result)) return result;

    // Not every platform offers the function, so it is no import.
    using Unregister = HRESULT(STDAPICALLTYPE*)(REFGUID, WORD, WORD, LCID, SYSKIND);
    HMODULE const automation = GetModuleHandleW(L"oleaut32.dll");
    const FARPROC found = FindFunction(automation, L"UnRegisterTypeLib", "UnRegisterTypeLib");
    if (found != nullptr) {
        const auto unregister = reinterpret_cast<Unregister>(reinterpret_cast<void*>(found));
        result = unregister(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum,
                            attributes->lcid, attributes->syskind);
    }
    library->ReleaseTLibAttr(attributes);
    return result;
}

HRESULT GetTypeDescription(REFGUID id, ComRef<ITypeInfo>& description) {
    ITypeLib* library = nullptr;
    const HRESULT result = GetKeptLibrary(library);
    if (FAILED(result)) return result;
    return library->GetTypeInfoOfGuid(id, description.Receive());
}

void ReleaseTypeLibrary() {
    if (keptLibrary != nullptr) keptLibrary->Release();
    keptLibrary = nullptr;
}

}  // namespace kavrel
