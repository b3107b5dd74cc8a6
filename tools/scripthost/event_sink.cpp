#include "event_sink.h"

#include <utility>

#include "text.h"

using Microsoft::WRL::ComPtr;

namespace scripthost {

namespace {

// The scripting engines' own code for an error that OnScriptError has already been told.
constexpr HRESULT kScriptErrorReported = static_cast<HRESULT>(0x80020101);

}  // namespace

EventSink::EventSink(IActiveScript* engine, ScriptSite* site, IDispatch* object,
                     std::wstring prefix)
    : engine_(engine),
      site_(site),
      object_(object),
      prefix_(std::move(prefix)),
      scriptThreadId_(GetCurrentThreadId()) {}

HRESULT EventSink::Connect() {
    const HRESULT result = FindEventSource(object_.Get(), &source_);
    return FAILED(result) ? result : source_.point->Advise(this, &cookie_);
}

void EventSink::Disconnect() {
    if (cookie_ == 0) return;
    source_.point->Unadvise(cookie_);
    cookie_ = 0;
}

bool EventSink::IsFor(IDispatch* object) const {
    ComPtr<IUnknown> mine;
    ComPtr<IUnknown> other;
    object_.As(&mine);
    object->QueryInterface(IID_PPV_ARGS(&other));
    return mine.Get() == other.Get();
}

STDMETHODIMP EventSink::QueryInterface(REFIID iid, void** object) {
    if (iid == source_.interfaceId)
        return DispatchObject::QueryInterface(__uuidof(IDispatch), object);
    return DispatchObject::QueryInterface(iid, object);
}

STDMETHODIMP EventSink::Invoke(DISPID id, REFIID, LCID lcid, WORD, DISPPARAMS* arguments,
                               VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
    const std::wstring* name = FindName(id);
    if (name == nullptr) return DISP_E_MEMBERNOTFOUND;
    if (GetCurrentThreadId() != scriptThreadId_) {
        site_->ReportFailure(L"EVENT ERROR " + *name + L" was raised on another thread");
        return RPC_E_WRONG_THREAD;
    }

    ComPtr<IDispatch> script;
    HRESULT status = engine_->GetScriptDispatch(nullptr, &script);
    if (FAILED(status)) return status;
    std::wstring procedure = prefix_ + *name;
    LPOLESTR text = procedure.data();
    DISPID procedureId = DISPID_UNKNOWN;
    status = script->GetIDsOfNames(IID_NULL, &text, 1, lcid, &procedureId);
    if (FAILED(status)) return S_OK;

    const bool failedBefore = site_->failed();
    status = script->Invoke(procedureId, IID_NULL, lcid, DISPATCH_METHOD, arguments, result,
                            exception, argumentError);
    if (FAILED(status) && status != kScriptErrorReported && failedBefore == site_->failed()) {
        site_->ReportFailure(L"EVENT ERROR in " + procedure + L": 0x" +
                             ToHex(static_cast<DWORD>(status)));
    }
    return status;
}

const std::wstring* EventSink::FindName(DISPID id) const {
    for (const EventName& event : source_.names) {
        if (event.id == id) return &event.name;
    }
    return nullptr;
}

HRESULT EventSinks::Connect(IDispatch* object, std::wstring prefix) {
    ComPtr<EventSink> sink;
    sink.Attach(new EventSink(engine_.Get(), site_.Get(), object, std::move(prefix)));
    const HRESULT result = sink->Connect();
    if (SUCCEEDED(result)) sinks_.push_back(sink);
    return result;
}

void EventSinks::Disconnect(IDispatch* object) {
    std::erase_if(sinks_, [object](const ComPtr<EventSink>& sink) {
        const bool found = sink->IsFor(object);
        if (found) sink->Disconnect();
        return found;
    });
}

void EventSinks::DisconnectAll() {
    for (const ComPtr<EventSink>& sink : sinks_)
        sink->Disconnect();
    sinks_.clear();
}

}  // namespace scripthost
