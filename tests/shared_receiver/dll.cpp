// Entry points of the stand-in's DLL. It registers itself where the product would be; a test does
// that, for its own duration and in the test's prefix only.
#include <unknwn.h>
#include <windows.h>

#include <string>

#include "platform/win32/shared_receiver_ids.h"
#include "shared_receiver/control.h"
#include "shared_receiver/object.h"

namespace kavrel::tests {

namespace {

constexpr wchar_t kProgId[] = L"RavelinApi::Simple";

class ClassFactory final : public IClassFactory {
  public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool isKnown = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory);
        *object = isKnown ? this : nullptr;
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }  // lives as long as the DLL
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : CreateStandInObject(id, object);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

ClassFactory classFactory;

std::wstring ClassText() {
    wchar_t text[39];
    StringFromGUID2(kSharedReceiverClass, text, 39);
    return text;
}

std::wstring ClassPath() {
    return L"CLSID\\" + ClassText();
}

std::wstring ModulePath() {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(&classFactory), &module);
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(module, path, MAX_PATH);
    return path;
}

LSTATUS SetText(const std::wstring& path, const wchar_t* name, const std::wstring& text) {
    return RegSetKeyValueW(HKEY_CLASSES_ROOT, path.c_str(), name, REG_SZ, text.c_str(),
                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

}  // namespace kavrel::tests

using namespace kavrel;
using namespace kavrel::tests;

extern "C" {

SharedReceiverStandIn* GetStandIn() {
    return &Control::Get();
}

HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualCLSID(classId, kSharedReceiverClass)) return CLASS_E_CLASSNOTAVAILABLE;
    return classFactory.QueryInterface(id, object);
}

// A test holds the control as long as it runs.
HRESULT WINAPI DllCanUnloadNow() {
    return S_FALSE;
}

HRESULT WINAPI DllRegisterServer() {
    const std::wstring server = ClassPath() + L"\\InprocServer32";
    const bool isDone =
        SetText(server, nullptr, ModulePath()) == ERROR_SUCCESS &&
        SetText(server, L"ThreadingModel", L"Both") == ERROR_SUCCESS &&
        SetText(std::wstring(kProgId) + L"\\CLSID", nullptr, ClassText()) == ERROR_SUCCESS;
    return isDone ? S_OK : E_FAIL;
}

HRESULT WINAPI DllUnregisterServer() {
    RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassPath().c_str());
    RegDeleteTreeW(HKEY_CLASSES_ROOT, kProgId);
    return S_OK;
}

}  // extern "C"
