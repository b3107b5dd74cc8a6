// The automation class NmeaParser, which clients create, with its events.
#pragma once

#include "KavrelCE_h.h"
#include "frame/automation_object.h"
#include "frame/event_source.h"
#include "parser/nmea_parser.h"

namespace kavrel {

class NmeaParserObject final : public AutomationObject<INmeaParser, NmeaParser, EventSource> {
  public:
    // Null when memory is short.
    static ComRef<IUnknown> Create();

    STDMETHOD(Parse)(VARIANT sentence) override;
    STDMETHOD(put_AllEventsGeneric)(VARIANT value) override;
    STDMETHOD(put_GpsDatum)(VARIANT value) override;
    STDMETHOD(put_ComPort)(VARIANT value) override;
    STDMETHOD(put_BaudRate)(VARIANT value) override;
    STDMETHOD(put_PortEnabled)(VARIANT value) override;
    STDMETHOD(put_NoEvents)(VARIANT value) override;
    STDMETHOD(GetGpsFix)(VARIANT timeOut, VARIANT fixType, VARIANT* result) override;
    STDMETHOD(GetSatellites)(VARIANT timeOut, VARIANT* result) override;
    STDMETHOD(GetMovement)(VARIANT timeOut, VARIANT* result) override;
    STDMETHOD(GetQuality)(VARIANT timeOut, VARIANT* result) override;
    STDMETHOD(GetComStatus)(VARIANT* result) override;
    STDMETHOD(WriteData)(VARIANT data) override;
    STDMETHOD(put_ChecksumMandatory)(VARIANT value) override;
    STDMETHOD(EventInterval)(VARIANT interval, VARIANT eventType) override;

  private:
    explicit NmeaParserObject(Ref<NmeaParser> parser);
    ~NmeaParserObject() override;

    HRESULT QueryFurtherInterface(REFIID id, void** object) override;

    // The engine raises events for as long as somebody listens.
    void OnSinksChanged(bool hasSinks) override;
    static void OnEvent(void* context, ParserEvent event, Record& object);
};

}  // namespace kavrel
