#include "automation/satellite_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&ISatellite::get_ID>(L"ID", 1),
    Get<&ISatellite::get_Elevation>(L"Elevation", 2),
    Get<&ISatellite::get_Azimuth>(L"Azimuth", 3),
    Get<&ISatellite::get_SNR>(L"SNR", 4),
    Get<&ISatellite::get_UsedForFix>(L"UsedForFix", 5),
};

constexpr ClassDescription kClass = {CLSID_Satellite, IID_ISatellite, nullptr, kMembers};

class SatelliteObject final : public AutomationObject<ISatellite, Satellite> {
  public:
    explicit SatelliteObject(Ref<Satellite> record) : AutomationObject(kClass, std::move(record)) {}

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
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) SatelliteObject(std::move(record)));
}

}  // namespace kavrel
