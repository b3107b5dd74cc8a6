#include "frame/error_report.h"

#include <oleauto.h>
#include <windows.h>

#include <array>
#include <cstddef>

#include "frame/com_ref.h"
#include "frame/module.h"
#include "frame/registry_editor.h"

namespace kavrel {
namespace {

constexpr HRESULT kFailureBase = static_cast<HRESULT>(0x80040000);
constexpr std::size_t kSourceCapacity = 120;
constexpr std::size_t kMessageCapacity = 512;

// The description under which a class is registered; empty when it is not.
std::array<wchar_t, kSourceCapacity + 1> RegisteredDescription(REFCLSID classId) {
    constexpr std::size_t kGuidLength = 38;
    wchar_t path[6 + kGuidLength + 1] = L"CLSID\\";
    StringFromGUID2(classId, path + 6, kGuidLength + 1);

    std::array<wchar_t, kSourceCapacity + 1>
        description{};  // a stored text may lack its terminator
    const OpenKey key(HKEY_CLASSES_ROOT, path);
    if (!key.IsOpen()) return description;

    DWORD type = 0;
    DWORD size = kSourceCapacity * sizeof(wchar_t);
    const LSTATUS status = RegQueryValueExW(key.get(), nullptr, nullptr, &type,
                                            reinterpret_cast<BYTE*>(description.data()), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ) description = {};
    return description;
}

HRESULT ReportWideError(REFCLSID classId, wchar_t* message, REFIID interfaceId, HRESULT failure) {
    ComRef<ICreateErrorInfo> creation;
    if (SUCCEEDED(CreateErrorInfo(creation.Receive()))) {
        creation->SetGUID(interfaceId);
        auto source = RegisteredDescription(classId);
        if (source[0] != L'\0') creation->SetSource(source.data());
        creation->SetDescription(message);

        ComRef<IErrorInfo> info;
        if (SUCCEEDED(creation->QueryInterface(IID_IErrorInfo, info.ReceiveVoid()))) {
            SetErrorInfo(0, info.get());
        }
    }
    return failure != S_OK ? failure : DISP_E_EXCEPTION;
}

}  // namespace

HRESULT ReportError(REFCLSID classId, std::string_view message, REFIID interfaceId,
                    HRESULT failure) {
    std::array<wchar_t, kMessageCapacity> wide{};
    MultiByteToWideChar(CP_ACP, 0, message.data(), static_cast<int>(message.size()), wide.data(),
                        static_cast<int>(wide.size() - 1));
    return ReportWideError(classId, wide.data(), interfaceId, failure);
}

HRESULT ReportError(REFCLSID classId, UINT messageResource, REFIID interfaceId, HRESULT failure) {
    if (failure == S_OK) failure = kFailureBase + static_cast<HRESULT>(messageResource);
    std::array<wchar_t, kMessageCapacity> wide{};
    const int length =
        LoadStringW(ModuleInstance(), messageResource, wide.data(), static_cast<int>(wide.size()));
    if (length == 0) {
        return ReportError(classId, MessageText(Message::UnknownError), interfaceId, failure);
    }
    return ReportWideError(classId, wide.data(), interfaceId, failure);
}

HRESULT CheckError(const ErrorSlot& error, REFCLSID classId, REFIID interfaceId) {
    if (!error.IsSet()) return S_OK;
    return ReportError(classId, error.text(), interfaceId,
                       kFailureBase | static_cast<HRESULT>(error.code()));
}

}  // namespace kavrel
