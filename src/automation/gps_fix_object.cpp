#include "automation/gps_fix_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/position_object.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IGpsFix::get_UTC>("UTC", 1),
    Get<&IGpsFix::get_Position>("Position", 2),
    Get<&IGpsFix::get_FixType>("FixType", 3),
};

constexpr ClassDescription kClass = {CLSID_GpsFix, IID_IGpsFix, nullptr, kMembers};

class GpsFixObject final : public AutomationObject<IGpsFix, GpsFix> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_UTC)(VARIANT* result) override { return GetBy<&GpsFix::Utc>(result); }
    STDMETHOD(get_Position)(VARIANT* result) override {
        return ReturnPosition(record().MakePosition(), result);
    }
    STDMETHOD(get_FixType)(VARIANT* result) override { return GetBy<&GpsFix::FixType>(result); }
};

}  // namespace

ComRef<IDispatch> WrapGpsFix(Ref<GpsFix> record) {
    return ObjectWithCore<GpsFixObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
