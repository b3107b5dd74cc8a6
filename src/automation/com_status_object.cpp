#include "automation/com_status_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IComStatus::get_ValidNmea>("ValidNmea", 1),
    Get<&IComStatus::get_ValidFix>("ValidFix", 2),
    Get<&IComStatus::get_ComPort>("ComPort", 3),
    Get<&IComStatus::get_BaudRate>("BaudRate", 4),
};

constexpr ClassDescription kClass = {CLSID_ComStatus, IID_IComStatus, nullptr, kMembers};

class ComStatusObject final : public AutomationObject<IComStatus, ComStatus> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_ValidNmea)(VARIANT* result) override {
        return GetBy<&ComStatus::ValidNmea>(result);
    }
    STDMETHOD(get_ValidFix)(VARIANT* result) override {
        return GetBy<&ComStatus::ValidFix>(result);
    }
    STDMETHOD(get_ComPort)(VARIANT* result) override { return GetBy<&ComStatus::ComPort>(result); }
    STDMETHOD(get_BaudRate)(VARIANT* result) override {
        return GetBy<&ComStatus::BaudRate>(result);
    }
};

}  // namespace

ComRef<IDispatch> WrapComStatus(Ref<ComStatus> record) {
    return ObjectWithCore<ComStatusObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
