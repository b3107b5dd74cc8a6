#include "automation/nmea_sentence_object.h"

#include <new>
#include <utility>

#include "frame/variant_in.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Get<&INmeaSentence::get_Sentence>(L"Sentence", 1),
    Put<&INmeaSentence::put_Sentence>(L"Sentence", 1),
    Query<&INmeaSentence::Fields>(L"Fields", 2),
    Get<&INmeaSentence::get_FieldsCount>(L"FieldsCount", 3),
    Get<&INmeaSentence::get_Command>(L"Command", 4),
    Put<&INmeaSentence::put_Command>(L"Command", 4),
    Get<&INmeaSentence::get_FullCommand>(L"FullCommand", 5),
    Put<&INmeaSentence::put_FullCommand>(L"FullCommand", 5),
    Method<&INmeaSentence::SetField>(L"SetField", 6),
};

constexpr ClassDescription kClass = {CLSID_NmeaSentence, IID_INmeaSentence, nullptr, kMembers};

}  // namespace

NmeaSentenceObject::NmeaSentenceObject(Ref<NmeaSentence> sentence)
    : AutomationObject(kClass, std::move(sentence)) {}

ComRef<IDispatch> NmeaSentenceObject::Create(Ref<NmeaSentence> sentence) {
    return ComRef<IDispatch>::Adopt(new (std::nothrow) NmeaSentenceObject(std::move(sentence)));
}

STDMETHODIMP NmeaSentenceObject::get_Sentence(VARIANT* result) {
    return Return(result, [&] { return record().Text(); });
}

STDMETHODIMP NmeaSentenceObject::put_Sentence(VARIANT value) {
    return Do([&] { record().SetText(TextArgument(value).view()); });
}

STDMETHODIMP NmeaSentenceObject::Fields(VARIANT index, VARIANT* result) {
    return Return(result, [&] { return record().Field(ToInt16(index)); });
}

STDMETHODIMP NmeaSentenceObject::get_FieldsCount(VARIANT* result) {
    return Return(result, [&] { return record().FieldCount(); });
}

STDMETHODIMP NmeaSentenceObject::get_Command(VARIANT* result) {
    return Return(result, [&] { return record().Command(); });
}

STDMETHODIMP NmeaSentenceObject::put_Command(VARIANT value) {
    return Do([&] { record().SetCommand(TextArgument(value).view()); });
}

STDMETHODIMP NmeaSentenceObject::get_FullCommand(VARIANT* result) {
    return Return(result, [&] { return record().FullCommand(); });
}

// The same operation as Command: both take 3 or 5 characters.
STDMETHODIMP NmeaSentenceObject::put_FullCommand(VARIANT value) {
    return put_Command(value);
}

STDMETHODIMP NmeaSentenceObject::SetField(VARIANT index, VARIANT value) {
    return Do([&] { record().SetField(ToInt16(index), TextArgument(value).view()); });
}

}  // namespace kavrel
