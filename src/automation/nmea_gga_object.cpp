#include "automation/nmea_gga_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaGGA::get_Position>(L"Position", 1),
    Get<&INmeaGGA::get_Valid>(L"Valid", 2),
    Get<&INmeaGGA::get_UTC>(L"UTC", 3),
    Get<&INmeaGGA::get_SatellitesInView>(L"SatellitesInView", 4),
    Get<&INmeaGGA::get_HDOP>(L"HDOP", 5),
};

constexpr ClassDescription kClass = {CLSID_NmeaGGA, IID_INmeaGGA, nullptr, kMembers};

class NmeaGGAObject final : public AutomationObject<INmeaGGA, NmeaGga> {
  public:
    explicit NmeaGGAObject(Ref<NmeaGga> record) : AutomationObject(kClass, std::move(record)) {}

    // Always succeeds: a record without a position gives a null object.
    STDMETHOD(get_Position)(VARIANT* result) override {
        if (result == nullptr) return E_POINTER;
        SetVariant(*result, WrapPosition(record().MakePosition()));
        return S_OK;
    }
    STDMETHOD(get_Valid)(VARIANT* result) override { return GetBy<&NmeaGga::Valid>(result); }
    STDMETHOD(get_UTC)(VARIANT* result) override {
        if (result == nullptr) return E_POINTER;
        SetVariantToDate(*result, record().Utc());
        return Check(record().error());
    }
    STDMETHOD(get_SatellitesInView)(VARIANT* result) override {
        return GetBy<&NmeaGga::SatellitesInView>(result);
    }
    STDMETHOD(get_HDOP)(VARIANT* result) override { return GetBy<&NmeaGga::Hdop>(result); }
};

}  // namespace

ComRef<IDispatch> WrapNmeaGGA(Ref<NmeaGga> record) {
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) NmeaGGAObject(std::move(record)));
}

}  // namespace kavrel
