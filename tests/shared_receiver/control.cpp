#include "shared_receiver/control.h"

#include <olectl.h>

#include "platform/win32/shared_receiver_ids.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

void SetErrorText(const std::wstring& description) {
    ComPtr<ICreateErrorInfo> creation;
    ComPtr<IErrorInfo> info;
    if (FAILED(CreateErrorInfo(&creation))) return;
    creation->SetDescription(const_cast<wchar_t*>(description.c_str()));
    if (SUCCEEDED(creation.As(&info))) SetErrorInfo(0, info.Get());
}

}  // namespace

Control& Control::Get() {
    static Control control;
    return control;
}

void Control::Reset() {
    offersEvents_ = true;
    keepsSinks_ = false;
    // Releasing a sink may call back, so not under the lock.
    std::map<DWORD, Sink> connections;
    std::vector<Sink> kept;
    const std::lock_guard lock(mutex_);
    answers_.clear();
    calls_.clear();
    connections.swap(connections_);
    kept.swap(kept_);
}

void Control::Answer(int method, HRESULT status, const wchar_t* description) {
    const std::lock_guard lock(mutex_);
    answers_[method] = {
        status, description != nullptr ? std::optional(std::wstring(description)) : std::nullopt};
}

const char* Control::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_.c_str();
}

int Control::sinks() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(connections_.size() + kept_.size());
}

void Control::Raise(DISPID event, VARIANT* value) {
    std::vector<Sink> sinks;
    {
        const std::lock_guard lock(mutex_);
        sinks = kept_;
        for (const auto& [cookie, sink] : connections_)
            sinks.push_back(sink);
    }
    DISPPARAMS parameters = {value, nullptr, value != nullptr ? 1U : 0U, 0};
    for (const Sink& sink : sinks) {
        sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                     nullptr, nullptr);
    }
}

HRESULT Control::Called(int method, std::optional<LONG> argument) {
    const std::lock_guard lock(mutex_);
    const std::string text = argument ? std::to_string(*argument) : std::string();
    calls_ += std::to_string(method) + "(" + text + ") ";
    const auto found = answers_.find(method);
    if (found == answers_.end()) return S_OK;
    if (found->second.description) SetErrorText(*found->second.description);
    return found->second.status;
}

HRESULT Control::Connect(IUnknown* sink, DWORD* cookie) {
    Sink events;
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    if (FAILED(sink->QueryInterface(kSharedReceiverEvents,
                                    reinterpret_cast<void**>(events.GetAddressOf())))) {
        return CONNECT_E_CANNOTCONNECT;
    }
    const std::lock_guard lock(mutex_);
    *cookie = ++lastCookie_;
    connections_[*cookie] = std::move(events);
    return S_OK;
}

HRESULT Control::Disconnect(DWORD cookie) {
    Sink released;
    const std::lock_guard lock(mutex_);
    const auto found = connections_.find(cookie);
    if (found == connections_.end()) return CONNECT_E_NOCONNECTION;
    released = std::move(found->second);
    connections_.erase(found);
    if (keepsSinks_) kept_.push_back(std::move(released));
    return S_OK;
}

}  // namespace kavrel::tests
