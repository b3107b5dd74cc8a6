#include "automation/nmea_gll_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaGLL::get_Position>("Position", 1),
    Get<&INmeaGLL::get_Valid>("Valid", 2),
    Get<&INmeaGLL::get_UTC>("UTC", 3),
};

constexpr ClassDescription kClass = {CLSID_NmeaGLL, IID_INmeaGLL, nullptr, kMembers};

class NmeaGLLObject final : public AutomationObject<INmeaGLL, NmeaGll> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_Position)(VARIANT* result) override {
        return ReturnPosition(record().MakePosition(), result);
    }
    STDMETHOD(get_Valid)(VARIANT* result) override { return GetBy<&NmeaGll::Valid>(result); }
    STDMETHOD(get_UTC)(VARIANT* result) override { return GetBy<&NmeaGll::Utc>(result); }
};

}  // namespace

ComRef<IDispatch> WrapNmeaGLL(Ref<NmeaGll> record) {
    return ObjectWithCore<NmeaGLLObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
