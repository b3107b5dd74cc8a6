#include "automation/movement_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&IMovement::get_Heading>("Heading", 1),
    Get<&IMovement::get_Speed>("Speed", 2),
    Get<&IMovement::get_MagneticVariation>("MagneticVariation", 3),
};

constexpr ClassDescription kClass = {CLSID_Movement, IID_IMovement, nullptr, kMembers};

class MovementObject final : public AutomationObject<IMovement, Movement> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_Heading)(VARIANT* result) override { return GetBy<&Movement::Heading>(result); }
    STDMETHOD(get_Speed)(VARIANT frm, VARIANT* result) override {
        return Return(result, [&] { return record().Speed(ToInt16(frm)); });
    }
    STDMETHOD(get_MagneticVariation)(VARIANT* result) override {
        return GetBy<&Movement::MagneticVariation>(result);
    }
};

}  // namespace

ComRef<IDispatch> WrapMovement(Ref<Movement> record) {
    return ObjectWithCore<MovementObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
