#include "automation/nmea_sentence_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "frame/automation_object.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaSentence::get_Sentence>("Sentence", 1),
    Put<&INmeaSentence::put_Sentence>("Sentence", 1),
    Query<&INmeaSentence::Fields>("Fields", 2),
    Get<&INmeaSentence::get_FieldsCount>("FieldsCount", 3),
    Get<&INmeaSentence::get_Command>("Command", 4),
    Put<&INmeaSentence::put_Command>("Command", 4),
    Get<&INmeaSentence::get_FullCommand>("FullCommand", 5),
    Put<&INmeaSentence::put_FullCommand>("FullCommand", 5),
    Method<&INmeaSentence::SetField>("SetField", 6),
};

constexpr ClassDescription kClass = {CLSID_NmeaSentence, IID_INmeaSentence, nullptr, kMembers};

class NmeaSentenceObject final : public AutomationObject<INmeaSentence, NmeaSentence> {
  public:
    using AutomationObject::AutomationObject;

    STDMETHOD(get_Sentence)(VARIANT* result) override {
        return GetBy<&NmeaSentence::TextAsGiven>(result);
    }
    STDMETHOD(put_Sentence)(VARIANT value) override {
        return Do([&] { record().SetText(WideTextArgument(value).view()); });
    }
    STDMETHOD(Fields)(VARIANT index, VARIANT* result) override {
        return Return(result, [&] { return record().FieldAsGiven(ToInt16(index)); });
    }
    STDMETHOD(get_FieldsCount)(VARIANT* result) override {
        return GetBy<&NmeaSentence::FieldCount>(result);
    }
    STDMETHOD(get_Command)(VARIANT* result) override {
        return GetBy<&NmeaSentence::CommandAsGiven>(result);
    }
    STDMETHOD(put_Command)(VARIANT value) override {
        return Do([&] { record().SetCommand(WideTextArgument(value).view()); });
    }
    STDMETHOD(get_FullCommand)(VARIANT* result) override {
        return GetBy<&NmeaSentence::FullCommandAsGiven>(result);
    }
    // The same operation as Command: both take 3 or 5 characters.
    STDMETHOD(put_FullCommand)(VARIANT value) override { return put_Command(value); }
    STDMETHOD(SetField)(VARIANT index, VARIANT value) override {
        return Do([&] { record().SetField(ToInt16(index), WideTextArgument(value).view()); });
    }
};

}  // namespace

ComRef<IDispatch> WrapNmeaSentence(Ref<NmeaSentence> record) {
    return ObjectWithCore<NmeaSentenceObject>::Make(kClass, std::move(record));
}

}  // namespace kavrel
