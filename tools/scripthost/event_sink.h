#pragma once

#include <activscp.h>
#include <windows.h>
#include <wrl/client.h>

#include <string>
#include <vector>

#include "com_object.h"
#include "event_source.h"
#include "script_site.h"

namespace scripthost {

// Receives the events of one object and calls the script procedure named prefix + event name.
// An event without such a procedure is ignored. An event raised on another thread than the
// script's is a fault of the source: it is reported and does not reach the script.
class EventSink : public DispatchObject {
  public:
    EventSink(IActiveScript* engine, ScriptSite* site, IDispatch* object, std::wstring prefix);

    // Connects to the object's events.
    HRESULT Connect();

    // Ends the connection; the sink then receives nothing more.
    void Disconnect();

    // True when the events are those of `object`.
    bool IsFor(IDispatch* object) const;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID lcid, WORD, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO* exception, UINT* argumentError) override;

  private:
    const std::wstring* FindName(DISPID id) const;

    Microsoft::WRL::ComPtr<IActiveScript> engine_;
    Microsoft::WRL::ComPtr<ScriptSite> site_;
    Microsoft::WRL::ComPtr<IDispatch> object_;
    std::wstring prefix_;
    EventSource source_;
    DWORD cookie_ = 0;
    DWORD scriptThreadId_;
};

// All the connections that a script has made.
class EventSinks {
  public:
    EventSinks(IActiveScript* engine, ScriptSite* site) : engine_(engine), site_(site) {}

    HRESULT Connect(IDispatch* object, std::wstring prefix);

    // Ends the connections to `object`.
    void Disconnect(IDispatch* object);
    void DisconnectAll();

  private:
    Microsoft::WRL::ComPtr<IActiveScript> engine_;
    Microsoft::WRL::ComPtr<ScriptSite> site_;
    std::vector<Microsoft::WRL::ComPtr<EventSink>> sinks_;
};

}  // namespace scripthost
