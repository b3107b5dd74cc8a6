// The automation class NmeaSentence: handed out with events, never created by clients.
#pragma once

#include "KavrelCE_h.h"
#include "frame/automation_object.h"
#include "nmea/nmea_sentence.h"

namespace kavrel {

class NmeaSentenceObject final : public AutomationObject<INmeaSentence, NmeaSentence> {
  public:
    // Null when memory is short.
    static ComRef<IDispatch> Create(Ref<NmeaSentence> sentence);

    STDMETHOD(get_Sentence)(VARIANT* result) override;
    STDMETHOD(put_Sentence)(VARIANT value) override;
    STDMETHOD(Fields)(VARIANT index, VARIANT* result) override;
    STDMETHOD(get_FieldsCount)(VARIANT* result) override;
    STDMETHOD(get_Command)(VARIANT* result) override;
    STDMETHOD(put_Command)(VARIANT value) override;
    STDMETHOD(get_FullCommand)(VARIANT* result) override;
    STDMETHOD(put_FullCommand)(VARIANT value) override;
    STDMETHOD(SetField)(VARIANT index, VARIANT value) override;

  private:
    explicit NmeaSentenceObject(Ref<NmeaSentence> sentence);
};

}  // namespace kavrel
