#include "automation/satellites_object.h"

#include <oleauto.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "KavrelCE_h.h"
#include "automation/satellite_object.h"
#include "frame/automation_object.h"
#include "frame/com_enumeration.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ISatellites::get_Count>("Count", 1),
    Get<&ISatellites::get_Item>("Item", DISPID_VALUE),
    Get<&ISatellites::get__NewEnum>("_NewEnum", DISPID_NEWENUM),
};

constexpr ClassDescription kClass = {CLSID_Satellites, IID_ISatellites, nullptr, kMembers};

class SatellitesObject final : public AutomationObject<ISatellites, Satellites> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_Count)(VARIANT* result) override { return GetBy<&Satellites::Count>(result); }
    STDMETHOD(get_Item)(VARIANT index, VARIANT* result) override {
        return Return(result, [&] { return WrapSatellite(record().Item(ToInt16(index))); });
    }
    STDMETHOD(get__NewEnum)(IUnknown** result) override;
};

// Hands out the satellites one by one, for For Each.
struct SatellitePolicy {
    using Kept = ComRef<IDispatch>;
    static const IID& InterfaceId() { return IID_IEnumVARIANT; }
    static void Copy(const Kept& from, VARIANT& to) {
        VariantInit(&to);
        SetVariant(to, from);
    }
};

using SatelliteEnumeration = ComEnumeration<IEnumVARIANT, VARIANT, SatellitePolicy>;

STDMETHODIMP SatellitesObject::get__NewEnum(IUnknown** result) {
    if (result == nullptr) return E_POINTER;
    std::vector<ComRef<IDispatch>> items;
    const std::int16_t count = record().Count();
    for (std::int16_t i = 1; i <= count; ++i)
        items.push_back(WrapSatellite(record().Item(i)));
    *result = SatelliteEnumeration::Create(std::move(items));
    return *result != nullptr ? S_OK : E_OUTOFMEMORY;
}

}  // namespace

ComRef<IDispatch> WrapSatellites(Ref<Satellites> record) {
    return ObjectWithCore<SatellitesObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
