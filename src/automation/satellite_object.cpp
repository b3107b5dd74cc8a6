#include "automation/satellite_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ISatellite::get_ID>("ID", 1),
    Get<&ISatellite::get_Elevation>("Elevation", 2),
    Get<&ISatellite::get_Azimuth>("Azimuth", 3),
    Get<&ISatellite::get_SNR>("SNR", 4),
    Get<&ISatellite::get_UsedForFix>("UsedForFix", 5),
};

constexpr ClassDescription kClass = {CLSID_Satellite, IID_ISatellite, nullptr, kMembers};

class SatelliteObject final : public AutomationObject<ISatellite, Satellite> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_ID)(VARIANT* result) override { return GetBy<&Satellite::Id>(result); }
    STDMETHOD(get_Elevation)(VARIANT* result) override {
        return GetBy<&Satellite::Elevation>(result);
    }
    STDMETHOD(get_Azimuth)(VARIANT* result) override { return GetBy<&Satellite::Azimuth>(result); }
    STDMETHOD(get_SNR)(VARIANT* result) override { return GetBy<&Satellite::Snr>(result); }
    STDMETHOD(get_UsedForFix)(VARIANT* result) override {
        return GetBy<&Satellite::UsedForFix>(result);
    }
};

}  // namespace

ComRef<IDispatch> WrapSatellite(Ref<Satellite> record) {
    return ObjectWithCore<SatelliteObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
