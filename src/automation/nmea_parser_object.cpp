#include "automation/nmea_parser_object.h"

#include <new>
#include <utility>

#include "automation/nmea_sentence_object.h"
#include "frame/variant_in.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Method<&INmeaParser::Parse>(L"Parse", 1),
    Put<&INmeaParser::put_AllEventsGeneric>(L"AllEventsGeneric", 2),
    Put<&INmeaParser::put_GpsDatum>(L"GpsDatum", 3),
    Put<&INmeaParser::put_ComPort>(L"ComPort", 4),
    Put<&INmeaParser::put_BaudRate>(L"BaudRate", 5),
    Put<&INmeaParser::put_PortEnabled>(L"PortEnabled", 6),
    Put<&INmeaParser::put_NoEvents>(L"NoEvents", 7),
    Query<&INmeaParser::GetGpsFix>(L"GetGpsFix", 8),
    Query<&INmeaParser::GetSatellites>(L"GetSatellites", 9),
    Query<&INmeaParser::GetMovement>(L"GetMovement", 10),
    Query<&INmeaParser::GetQuality>(L"GetQuality", 11),
    Query<&INmeaParser::GetComStatus>(L"GetComStatus", 12),
    Method<&INmeaParser::WriteData>(L"WriteData", 13),
    Put<&INmeaParser::put_ChecksumMandatory>(L"ChecksumMandatory", 14),
    Method<&INmeaParser::EventInterval>(L"EventInterval", 15),
};

constexpr ClassDescription kClass = {CLSID_NmeaParser, IID_INmeaParser, &DIID__INmeaParserEvents,
                                     kMembers};

constexpr DISPID kGenericEvent = 1;

}  // namespace

NmeaParserObject::NmeaParserObject(Ref<NmeaParser> parser)
    : AutomationObject(kClass, std::move(parser)) {}

NmeaParserObject::~NmeaParserObject() {
    record().SetEventSink({});
}

ComRef<IUnknown> NmeaParserObject::Create() {
    Ref<NmeaParser> parser = TryMakeRef<NmeaParser>();
    if (!parser) return nullptr;
    INmeaParser* const object = new (std::nothrow) NmeaParserObject(std::move(parser));
    return ComRef<IUnknown>::Adopt(object);
}

HRESULT NmeaParserObject::QueryFurtherInterface(REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualIID(id, IID_IConnectionPointContainer)) return E_NOINTERFACE;
    *object = static_cast<IConnectionPointContainer*>(this);
    AddRef();
    return S_OK;
}

void NmeaParserObject::OnSinksChanged(bool hasSinks) {
    EventSink sink;
    if (hasSinks) {
        sink.context = this;
        sink.callbacks.fill(&NmeaParserObject::OnEvent);
    }
    record().SetEventSink(sink);
}

void NmeaParserObject::OnEvent(void* context, ParserEvent event, Record& object) {
    if (event != ParserEvent::Generic) return;
    auto& self = *static_cast<NmeaParserObject*>(context);
    const ComRef<IDispatch> sentence =
        NmeaSentenceObject::Create(Ref<NmeaSentence>::Share(static_cast<NmeaSentence*>(&object)));
    IDispatch* const arguments[] = {sentence.get()};
    self.connectionPoint().Raise(kGenericEvent, arguments);
}

STDMETHODIMP NmeaParserObject::Parse(VARIANT sentence) {
    // An event's receiver may drop the client's last reference.
    const auto keepAlive = ComRef<INmeaParser>::Share(this);
    return Do([&] { record().Parse(TextArgument(sentence).view()); });
}

STDMETHODIMP NmeaParserObject::put_AllEventsGeneric(VARIANT value) {
    return Do([&] { record().SetAllEventsGeneric(ToBool(value)); });
}

STDMETHODIMP NmeaParserObject::put_GpsDatum(VARIANT value) {
    return Do([&] { record().SetGpsDatum(ToInt16(value)); });
}

STDMETHODIMP NmeaParserObject::put_ComPort(VARIANT value) {
    return Do([&] { record().SetComPort(ToInt16(value)); });
}

STDMETHODIMP NmeaParserObject::put_BaudRate(VARIANT value) {
    return Do([&] { record().SetBaudRate(ToInt32(value)); });
}

STDMETHODIMP NmeaParserObject::put_PortEnabled(VARIANT) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::put_NoEvents(VARIANT value) {
    return Do([&] { record().SetNoEvents(ToBool(value)); });
}

STDMETHODIMP NmeaParserObject::GetGpsFix(VARIANT, VARIANT, VARIANT*) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::GetSatellites(VARIANT, VARIANT*) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::GetMovement(VARIANT, VARIANT*) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::GetQuality(VARIANT, VARIANT*) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::GetComStatus(VARIANT*) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::WriteData(VARIANT) {
    return NotImplemented();
}

STDMETHODIMP NmeaParserObject::put_ChecksumMandatory(VARIANT value) {
    return Do([&] { record().SetChecksumMandatory(ToBool(value)); });
}

STDMETHODIMP NmeaParserObject::EventInterval(VARIANT interval, VARIANT eventType) {
    return Do([&] { record().SetEventInterval(ToInt32(interval), ToInt32(eventType)); });
}

}  // namespace kavrel
