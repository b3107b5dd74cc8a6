#include "platform/win32/shared_receiver_sink.h"

#include <oleauto.h>

#include <cstddef>
#include <string>

#include "platform/win32/readable_variant.h"
#include "platform/win32/shared_receiver_ids.h"

namespace kavrel {
namespace {

// The first argument, or what it refers to; null when there is none.
VARIANT* ValueIn(const DISPPARAMS* parameters) {
    if (parameters == nullptr || parameters->cArgs == 0) return nullptr;
    VARIANT* const value = &parameters->rgvarg[parameters->cArgs - 1];  // they stand in reverse
    return V_VT(value) == (VT_BYREF | VT_VARIANT) ? V_VARIANTREF(value) : value;
}

bool IsAbsent(const VARIANT* value) {
    if (value == nullptr || V_VT(value) == VT_NULL) return true;
    return V_VT(value) == VT_ERROR && V_ERROR(value) == DISP_E_PARAMNOTFOUND;
}

// Each character cut to 8 bits; empty when the value is no text and cannot become one.
std::string TextOf(VARIANT& value) {
    VARIANT converted;
    VariantInit(&converted);
    std::string text;
    if (IsReadable(value) && SUCCEEDED(VariantChangeType(&converted, &value, 0, VT_BSTR))) {
        const BSTR characters = V_BSTR(&converted);
        text.resize(SysStringLen(characters));
        for (std::size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char>(characters[i]);
    }
    VariantClear(&converted);
    return text;
}

}  // namespace

void SharedReceiverSink::Detach() {
    const LockScope lock(lock_);
    listener_ = nullptr;
}

HRESULT SharedReceiverSink::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch) &&
        !IsEqualIID(id, kSharedReceiverEvents)) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

ULONG SharedReceiverSink::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&referenceCount_));
}

ULONG SharedReceiverSink::Release() {
    const LONG count = InterlockedDecrement(&referenceCount_);
    if (count == 0) delete this;
    return static_cast<ULONG>(count);
}

HRESULT SharedReceiverSink::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT SharedReceiverSink::GetTypeInfo(UINT /*index*/, LCID /*locale*/, ITypeInfo** /*info*/) {
    return E_NOTIMPL;
}

HRESULT SharedReceiverSink::GetIDsOfNames(REFIID /*reserved*/, LPOLESTR* /*names*/, UINT /*count*/,
                                          LCID /*locale*/, DISPID* /*ids*/) {
    return DISP_E_UNKNOWNNAME;
}

HRESULT SharedReceiverSink::Invoke(DISPID id, REFIID /*reserved*/, LCID /*locale*/, WORD /*kinds*/,
                                   DISPPARAMS* parameters, VARIANT* /*result*/,
                                   EXCEPINFO* /*exception*/, UINT* /*wrongArgument*/) {
    if (id != kSharedReceiverDataEvent) return S_OK;
    VARIANT* const value = ValueIn(parameters);
    const bool isClosed = IsAbsent(value);
    const std::string text = isClosed ? std::string() : TextOf(*value);

    const LockScope lock(lock_);
    if (listener_ == nullptr) return S_OK;
    if (isClosed) {
        listener_->OnClosed();
    } else {
        listener_->OnText(text);
    }
    return S_OK;
}

}  // namespace kavrel
