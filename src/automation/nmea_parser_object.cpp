#include "automation/nmea_parser_object.h"

#include <utility>

#include "KavrelCE_h.h"
#include "automation/com_status_object.h"
#include "automation/gps_fix_object.h"
#include "automation/movement_object.h"
#include "automation/parser_event_link.h"
#include "automation/parser_events.h"
#include "automation/quality_object.h"
#include "automation/satellites_object.h"
#include "frame/automation_object.h"
#include "frame/event_source.h"
#include "parser/nmea_parser.h"

namespace kavrel {
namespace {

constexpr Member kMembers[] = {
    Method<&INmeaParser::Parse>("Parse", 1),
    Put<&INmeaParser::put_AllEventsGeneric>("AllEventsGeneric", 2),
    Put<&INmeaParser::put_GpsDatum>("GpsDatum", 3),
    Put<&INmeaParser::put_ComPort>("ComPort", 4),
    Put<&INmeaParser::put_BaudRate>("BaudRate", 5),
    Put<&INmeaParser::put_PortEnabled>("PortEnabled", 6),
    Put<&INmeaParser::put_NoEvents>("NoEvents", 7),
    Query<&INmeaParser::GetGpsFix>("GetGpsFix", 8),
    Query<&INmeaParser::GetSatellites>("GetSatellites", 9),
    Query<&INmeaParser::GetMovement>("GetMovement", 10),
    Query<&INmeaParser::GetQuality>("GetQuality", 11),
    Query<&INmeaParser::GetComStatus>("GetComStatus", 12),
    Method<&INmeaParser::WriteData>("WriteData", 13),
    Put<&INmeaParser::put_ChecksumMandatory>("ChecksumMandatory", 14),
    Method<&INmeaParser::EventInterval>("EventInterval", 15),
};

constexpr ClassDescription kClass = {CLSID_NmeaParser, IID_INmeaParser, &DIID__INmeaParserEvents,
                                     kMembers};

class NmeaParserObject final : public AutomationObject<INmeaParser, NmeaParser, EventSource> {
  public:
    using Link = ParserEventLink<NmeaParserObject>;

    NmeaParserObject(ObjectCore& core, Ref<Link> link)
        : AutomationObject(core), link_(std::move(link)) {
        link_->Tie(this);
        record().KeepContext(link_);
    }
    ~NmeaParserObject() {
        link_->Cut();
        record().SetEventSink({});
        record().ShutDown();
    }

    STDMETHOD(QueryInterface)(REFIID id, void** object) override {
        const HRESULT found = AutomationObject::QueryInterface(id, object);
        if (found != E_NOINTERFACE || !IsEqualIID(id, IID_IConnectionPointContainer)) return found;
        *object = static_cast<IConnectionPointContainer*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHOD(Parse)(VARIANT sentence) override {
        // The receiver of an event may drop the client's last reference, and the engine goes on.
        const auto keepAlive = ComRef<INmeaParser>::Share(this);
        return Do([&] { record().Parse(TextArgument(sentence).view()); });
    }
    STDMETHOD(put_AllEventsGeneric)(VARIANT value) override {
        return PutBy<&NmeaParser::SetAllEventsGeneric>(value);
    }
    STDMETHOD(put_GpsDatum)(VARIANT value) override {
        return PutBy<&NmeaParser::SetGpsDatum>(value);
    }
    STDMETHOD(put_ComPort)(VARIANT value) override {
        return Do([&] { record().SetComPort(ToInt16(value)); });
    }
    STDMETHOD(put_BaudRate)(VARIANT value) override {
        return PutBy<&NmeaParser::SetBaudRate>(value);
    }
    STDMETHOD(put_PortEnabled)(VARIANT value) override {
        return PutBy<&NmeaParser::SetPortEnabled>(value);
    }
    STDMETHOD(put_NoEvents)(VARIANT value) override {
        return PutBy<&NmeaParser::SetNoEvents>(value);
    }
    STDMETHOD(GetGpsFix)(VARIANT timeOut, VARIANT fixType, VARIANT* result) override {
        return Return(result, [&] {
            return WrapGpsFix(record().GetGpsFix(ToInt32(timeOut), ToInt16(fixType)));
        });
    }
    STDMETHOD(GetSatellites)(VARIANT timeOut, VARIANT* result) override {
        return Return(result,
                      [&] { return WrapSatellites(record().GetSatellites(ToInt32(timeOut))); });
    }
    STDMETHOD(GetMovement)(VARIANT timeOut, VARIANT* result) override {
        return Return(result, [&] { return WrapMovement(record().GetMovement(ToInt32(timeOut))); });
    }
    STDMETHOD(GetQuality)(VARIANT timeOut, VARIANT* result) override {
        return Return(result, [&] { return WrapQuality(record().GetQuality(ToInt32(timeOut))); });
    }
    STDMETHOD(GetComStatus)(VARIANT* result) override {
        return Return(result, [&] { return WrapComStatus(record().GetComStatus()); });
    }
    STDMETHOD(WriteData)(VARIANT data) override {
        return Do([&] {
            record().WriteData(IsArray(data) ? BytesFromArray(data) : BytesFromString(data));
        });
    }
    STDMETHOD(put_ChecksumMandatory)(VARIANT value) override {
        return PutBy<&NmeaParser::SetChecksumMandatory>(value);
    }
    STDMETHOD(EventInterval)(VARIANT interval, VARIANT eventType) override {
        return Do([&] { record().SetEventInterval(ToInt32(interval), ToInt32(eventType)); });
    }

  private:
    // The engine raises events, and decodes for them, for as long as somebody listens.
    void OnSinksChanged(bool hasSinks) override {
        EventSink sink;
        if (hasSinks) {
            sink.context = link_.get();
            sink.callbacks.fill(&NmeaParserObject::OnEvent);
        }
        record().SetEventSink(sink);
    }

    static void OnEvent(void* context, ParserEvent event, Record& object) {
        // The reference also keeps the object from being released by the receiver of the event.
        const ComRef<NmeaParserObject> self = static_cast<Link*>(context)->Lock();
        if (self) RaiseParserEvent(self->connectionPoint(), event, object);
    }

    const Ref<Link> link_;
};

}  // namespace

ComRef<IDispatch> CreateNmeaParserObject() {
    Ref<NmeaParser> engine = TryMakeRef<NmeaParser>();
    auto link = TryMakeRef<NmeaParserObject::Link>();
    if (!engine || !engine->IsComplete() || !link) return nullptr;
    return ObjectWithCore<NmeaParserObject>::Make(kClass, std::move(engine), std::move(link));
}

}  // namespace kavrel
