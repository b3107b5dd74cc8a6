#include "automation/nmea_rmc_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaRMC::get_GroundSpeed>("GroundSpeed", 1),
    Get<&INmeaRMC::get_Position>("Position", 2),
    Get<&INmeaRMC::get_Valid>("Valid", 3),
    Get<&INmeaRMC::get_UTC>("UTC", 4),
    Get<&INmeaRMC::get_Heading>("Heading", 5),
    Get<&INmeaRMC::get_MagneticVariation>("MagneticVariation", 6),
};

constexpr ClassDescription kClass = {CLSID_NmeaRMC, IID_INmeaRMC, nullptr, kMembers};

class NmeaRMCObject final : public AutomationObject<INmeaRMC, NmeaRmc> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_GroundSpeed)(VARIANT frm, VARIANT* result) override {
        return Return(result, [&] { return record().GroundSpeed(ToInt16(frm)); });
    }
    STDMETHOD(get_Position)(VARIANT* result) override {
        return ReturnPosition(record().MakePosition(), result);
    }
    STDMETHOD(get_Valid)(VARIANT* result) override { return GetBy<&NmeaRmc::Valid>(result); }
    STDMETHOD(get_UTC)(VARIANT* result) override { return GetBy<&NmeaRmc::Utc>(result); }
    STDMETHOD(get_Heading)(VARIANT* result) override { return GetBy<&NmeaRmc::Heading>(result); }
    STDMETHOD(get_MagneticVariation)(VARIANT* result) override {
        return GetBy<&NmeaRmc::MagneticVariation>(result);
    }
};

}  // namespace

ComRef<IDispatch> WrapNmeaRMC(Ref<NmeaRmc> record) {
    return ObjectWithCore<NmeaRMCObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
