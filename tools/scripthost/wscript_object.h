#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "com_object.h"
#include "event_sink.h"

namespace scripthost {

// Ends the process at once with `exitCode`, whatever its threads are doing. Output is flushed.
[[noreturn]] void EndProcess(UINT exitCode);

// The object `WScript` of a script:
//   Echo(values...)                  writes the values, separated by blanks, as one line
//   Quit([exitCode])                 ends the process
//   Sleep(milliseconds)              waits and dispatches messages, so that events arrive
//   Arg(n)                           the n-th argument behind the script's name, counted from 0
//   ConnectObject(object, prefix)    events call the procedures named prefix + event name
//   DisconnectObject(object)         no more events of this object
class WScriptObject : public DispatchObject {
  public:
    // `sinks` must outlive the object.
    WScriptObject(std::vector<std::wstring> arguments, EventSinks* sinks);

    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result,
                        EXCEPINFO*, UINT*) override;

  private:
    using Arguments = std::vector<const VARIANT*>;
    struct Member;

    HRESULT Echo(const Arguments& arguments, VARIANT* result);
    HRESULT Quit(const Arguments& arguments, VARIANT* result);
    HRESULT Sleep(const Arguments& arguments, VARIANT* result);
    HRESULT Arg(const Arguments& arguments, VARIANT* result);
    HRESULT ConnectObject(const Arguments& arguments, VARIANT* result);
    HRESULT DisconnectObject(const Arguments& arguments, VARIANT* result);

    static const Member kMembers[];

    std::vector<std::wstring> arguments_;
    EventSinks* sinks_;
};

}  // namespace scripthost
