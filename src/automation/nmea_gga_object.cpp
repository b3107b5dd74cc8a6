#include "automation/nmea_gga_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaGGA::get_Position>("Position", 1),
    Get<&INmeaGGA::get_Valid>("Valid", 2),
    Get<&INmeaGGA::get_UTC>("UTC", 3),
    Get<&INmeaGGA::get_SatellitesInView>("SatellitesInView", 4),
    Get<&INmeaGGA::get_HDOP>("HDOP", 5),
};

constexpr ClassDescription kClass = {CLSID_NmeaGGA, IID_INmeaGGA, nullptr, kMembers};

class NmeaGGAObject final : public AutomationObject<INmeaGGA, NmeaGga> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_Position)(VARIANT* result) override {
        return ReturnPosition(record().MakePosition(), result);
    }
    STDMETHOD(get_Valid)(VARIANT* result) override { return GetBy<&NmeaGga::Valid>(result); }
    STDMETHOD(get_UTC)(VARIANT* result) override { return GetBy<&NmeaGga::Utc>(result); }
    STDMETHOD(get_SatellitesInView)(VARIANT* result) override {
        return GetBy<&NmeaGga::SatellitesInView>(result);
    }
    STDMETHOD(get_HDOP)(VARIANT* result) override { return GetBy<&NmeaGga::Hdop>(result); }
};

}  // namespace

ComRef<IDispatch> WrapNmeaGGA(Ref<NmeaGga> record) {
    return ObjectWithCore<NmeaGGAObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
