#include "frame/object_core.h"

#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include "base/text_view.h"
#include "frame/com_ref.h"
#include "frame/error_report.h"
#include "frame/type_library.h"
#include "frame/variant_in.h"
#include "frame/variant_out.h"
#include "platform/win32/module_lock.h"

namespace kavrel {

ObjectCore::ObjectCore(const ClassDescription& description, Ref<Record> record, void* whole,
                       void (*destroy)(void* whole))
    : description_(description), record_(std::move(record)), whole_(whole), destroy_(destroy) {
    LockModule();
}

ObjectCore::~ObjectCore() {
    UnlockModule();
}

HRESULT ObjectCore::FindInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const bool hasEvents = description_.eventInterfaceId != nullptr;
    if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ||
        IsEqualIID(id, description_.interfaceId)) {
        *object = face_;
    } else if (IsEqualIID(id, kRecordHolderId)) {
        *object = static_cast<IRecordHolder*>(this);
    } else if (IsEqualIID(id, IID_ISupportErrorInfo)) {
        *object = static_cast<ISupportErrorInfo*>(this);
    } else if (IsEqualIID(id, IID_IProvideClassInfo) ||
               (hasEvents && IsEqualIID(id, IID_IProvideClassInfo2))) {
        *object = static_cast<IProvideClassInfo2*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP ObjectCore::QueryInterface(REFIID id, void** object) {
    return face_->QueryInterface(id, object);
}

STDMETHODIMP_(ULONG) ObjectCore::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&referenceCount_));
}

STDMETHODIMP_(ULONG) ObjectCore::Release() {
    const LONG count = InterlockedDecrement(&referenceCount_);
    if (count == 0) destroy_(whole_);
    return static_cast<ULONG>(count);
}

bool ObjectCore::AddReferenceUnlessLast() {
    for (LONG count = referenceCount_; count != 0;) {
        const LONG found = InterlockedCompareExchange(&referenceCount_, count + 1, count);
        if (found == count) return true;
        count = found;
    }
    return false;
}

HRESULT ObjectCore::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
}

HRESULT ObjectCore::GetTypeInfo(UINT index, LCID, ITypeInfo** type) {
    if (type == nullptr) return E_POINTER;
    *type = nullptr;
    if (index != 0) return DISP_E_BADINDEX;
    ComRef<ITypeInfo> found;
    const HRESULT result = GetTypeDescription(description_.interfaceId, found);
    *type = found.Detach();
    return result;
}

HRESULT ObjectCore::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) {
    return GetMemberIds(description_, names, count, locale, ids);
}

HRESULT ObjectCore::Invoke(DISPID id, REFIID reserved, LCID locale, WORD kinds,
                           DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                           UINT* argumentError) {
    return InvokeMember(description_, face_, id, reserved, locale, kinds, parameters, result,
                        exception, argumentError);
}

STDMETHODIMP ObjectCore::InterfaceSupportsErrorInfo(REFIID id) {
    return IsEqualIID(id, description_.interfaceId) ? S_OK : S_FALSE;
}

STDMETHODIMP ObjectCore::GetClassInfo(ITypeInfo** type) {
    if (type == nullptr) return E_POINTER;
    ComRef<ITypeInfo> found;
    const HRESULT result = GetTypeDescription(description_.classId, found);
    *type = found.Detach();
    return result;
}

STDMETHODIMP ObjectCore::GetGUID(DWORD kind, GUID* id) {
    if (id == nullptr) return E_POINTER;
    *id = GUID_NULL;
    if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || description_.eventInterfaceId == nullptr) {
        return E_INVALIDARG;
    }
    *id = *description_.eventInterfaceId;
    return S_OK;
}

Record* STDMETHODCALLTYPE ObjectCore::RecordOfClass(REFCLSID classId) {
    return IsEqualCLSID(classId, description_.classId) ? record_.get() : nullptr;
}

HRESULT ObjectCore::Check() const {
    return CheckError(record_->error(), description_.classId, description_.interfaceId);
}

HRESULT ObjectCore::RefuseObject(HRESULT failure) const {
    return ReportError(description_.classId, MessageText(Message::NotAValidObject),
                       description_.interfaceId, failure);
}

template <typename Value>
HRESULT ObjectCore::Get(VARIANT* result, Value (*getter)(Record& record)) {
    if (result == nullptr) return E_POINTER;
    record_->error().Clear();
    if constexpr (std::is_same_v<Value, std::optional<double>>) {
        SetVariantToDate(*result, getter(*record_));
    } else {
        SetVariant(*result, getter(*record_));
    }
    return Check();
}

template <typename Value>
HRESULT ObjectCore::Put(const VARIANT& value, void (*setter)(Record& record, Value value)) {
    record_->error().Clear();
    setter(*record_, FromVariant<Value>(value));
    return Check();
}

template HRESULT ObjectCore::Get(VARIANT*, bool (*)(Record&));
template HRESULT ObjectCore::Get(VARIANT*, std::int16_t (*)(Record&));
template HRESULT ObjectCore::Get(VARIANT*, std::int32_t (*)(Record&));
template HRESULT ObjectCore::Get(VARIANT*, double (*)(Record&));
template HRESULT ObjectCore::Get(VARIANT*, std::optional<double> (*)(Record&));
template HRESULT ObjectCore::Get(VARIANT*, TextView (*)(Record&));

template HRESULT ObjectCore::Put(const VARIANT&, void (*)(Record&, bool));
template HRESULT ObjectCore::Put(const VARIANT&, void (*)(Record&, std::int16_t));
template HRESULT ObjectCore::Put(const VARIANT&, void (*)(Record&, std::int32_t));
template HRESULT ObjectCore::Put(const VARIANT&, void (*)(Record&, double));

}  // namespace kavrel
