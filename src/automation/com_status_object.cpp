#include "automation/com_status_object.h"

#include <new>
#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IComStatus::get_ValidNmea>(L"ValidNmea", 1),
    Get<&IComStatus::get_ValidFix>(L"ValidFix", 2),
    Get<&IComStatus::get_ComPort>(L"ComPort", 3),
    Get<&IComStatus::get_BaudRate>(L"BaudRate", 4),
};

constexpr ClassDescription kClass = {CLSID_ComStatus, IID_IComStatus, nullptr, kMembers};

class ComStatusObject final : public AutomationObject<IComStatus, ComStatus> {
  public:
    explicit ComStatusObject(Ref<ComStatus> record) : AutomationObject(kClass, std::move(record)) {}

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
    if (!record) return nullptr;
    return ComRef<IDispatch>::Adopt(new (std::nothrow) ComStatusObject(std::move(record)));
}

}  // namespace kavrel
