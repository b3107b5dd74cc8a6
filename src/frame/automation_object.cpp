#include "frame/automation_object.h"

#include "frame/error_report.h"

namespace kavrel {

IUnknown* ClassInformation::Find(REFIID id) {
    if (IsEqualIID(id, IID_ISupportErrorInfo)) return static_cast<ISupportErrorInfo*>(this);
    const bool hasEvents = description_.eventInterfaceId != nullptr;
    if (IsEqualIID(id, IID_IProvideClassInfo) ||
        (hasEvents && IsEqualIID(id, IID_IProvideClassInfo2))) {
        return static_cast<IProvideClassInfo2*>(this);
    }
    return nullptr;
}

HRESULT ClassInformation::Check(const ErrorSlot& error) const {
    return CheckError(error, description_.classId, description_.interfaceId);
}

HRESULT ClassInformation::RefuseObject(HRESULT failure) const {
    return ReportError(description_.classId, MessageText(Message::NotAValidObject),
                       description_.interfaceId, failure);
}

STDMETHODIMP ClassInformation::InterfaceSupportsErrorInfo(REFIID id) {
    return IsEqualIID(id, description_.interfaceId) ? S_OK : S_FALSE;
}

STDMETHODIMP ClassInformation::GetClassInfo(ITypeInfo** type) {
    if (type == nullptr) return E_POINTER;
    ComRef<ITypeInfo> found;
    const HRESULT result = GetTypeDescription(description_.classId, found);
    *type = found.Detach();
    return result;
}

STDMETHODIMP ClassInformation::GetGUID(DWORD kind, GUID* id) {
    if (id == nullptr) return E_POINTER;
    *id = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || description_.eventInterfaceId == nullptr) {
        return E_INVALIDARG;
    }
    *id = *description_.eventInterfaceId;
    return S_OK;
}

}  // namespace kavrel
