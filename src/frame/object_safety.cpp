#include "frame/object_safety.h"

namespace kavrel {
namespace {

constexpr DWORD kSafeOptions =
    INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;

}  // namespace

bool ObjectSafety::IsSafeInterface(REFIID id) const {
    return IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interfaceId_);
}

STDMETHODIMP ObjectSafety::GetInterfaceSafetyOptions(REFIID id, DWORD* supported, DWORD* enabled) {
    if (supported == nullptr || enabled == nullptr) return E_POINTER;
    const bool isSafe = IsSafeInterface(id);
    *supported = isSafe ? kSafeOptions : 0;
    *enabled = *supported;
    return isSafe ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP ObjectSafety::SetInterfaceSafetyOptions(REFIID id, DWORD mask, DWORD) {
    if (!IsSafeInterface(id)) return E_NOINTERFACE;
    return (mask & ~kSafeOptions) == 0 ? S_OK : E_FAIL;
}

}  // namespace kavrel
