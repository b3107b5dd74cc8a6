#include "automation/support/shared_receiver_server.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include "automation/support/var.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// Makes the class known in the calling thread's apartment, which it enters.
DWORD Install(IClassFactory& factory, DWORD apartment) {
    CoInitializeEx(nullptr, apartment);
    DWORD cookie = 0;
    EXPECT_EQ(S_OK, CoRegisterClassObject(kSharedReceiverClass, &factory, CLSCTX_INPROC_SERVER,
                                          REGCLS_MULTIPLEUSE, &cookie));
    return cookie;
}

void Remove(DWORD cookie) {
    CoRevokeClassObject(cookie);
    CoUninitialize();
}

void SetErrorText(const wchar_t* description) {
    ComPtr<ICreateErrorInfo> creation;
    ComPtr<IErrorInfo> info;
    CreateErrorInfo(&creation);
    creation->SetDescription(const_cast<wchar_t*>(description));
    creation.As(&info);
    SetErrorInfo(0, info.Get());
}

}  // namespace

SharedReceiverServer::SharedReceiverServer()
    : cookie_(Install(*this, COINIT_APARTMENTTHREADED)), elsewhere_([this] {
          const DWORD cookie = Install(*this, COINIT_MULTITHREADED);
          isKnown_.set_value();
          isOver_.get_future().wait();
          Remove(cookie);
      }) {
    isKnown_.get_future().wait();
    restReferences_ = references_;
}

SharedReceiverServer::~SharedReceiverServer() {
    isOver_.set_value();
    elsewhere_.join();
    Remove(cookie_);
    EXPECT_EQ(0, references_);
}

void SharedReceiverServer::Answer(int method, HRESULT status, const wchar_t* description) {
    const std::lock_guard lock(mutex_);
    answers_[method] = {status, description};
}

SharedReceiverServer::Sink SharedReceiverServer::sink() const {
    const std::lock_guard lock(mutex_);
    return sink_;
}

std::string SharedReceiverServer::calls() const {
    const std::lock_guard lock(mutex_);
    return calls_;
}

void SharedReceiverServer::Raise(DISPID event, const VARIANT* value) {
    const Sink sink = this->sink();
    if (!sink) return;
    DISPPARAMS parameters = {const_cast<VARIANT*>(value), nullptr, value != nullptr ? 1U : 0U, 0};
    sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, nullptr,
                 nullptr, nullptr);
}

void SharedReceiverServer::RaiseText(const std::wstring& text) {
    Raise(kSharedReceiverDataEvent, Var(text).get());
}

STDMETHODIMP SharedReceiverServer::QueryInterface(REFIID id, void** object) {
    *object = nullptr;
    if (id == IID_IUnknown || id == kSharedReceiverInterface) {
        *object = static_cast<SharedReceiverInterface*>(this);
    } else if (id == IID_IClassFactory) {
        *object = static_cast<IClassFactory*>(this);
    } else if (id == IID_IConnectionPointContainer) {
        *object = static_cast<IConnectionPointContainer*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP SharedReceiverServer::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
    *point = nullptr;
    if (id != kSharedReceiverEvents || !offersEvents) return CONNECT_E_NOCONNECTION;
    *point = this;
    AddRef();
    return S_OK;
}

STDMETHODIMP SharedReceiverServer::Advise(IUnknown* sink, DWORD* cookie) {
    Sink events;
    const HRESULT status = sink->QueryInterface(kSharedReceiverEvents,
                                                reinterpret_cast<void**>(events.GetAddressOf()));
    if (FAILED(status)) return CONNECT_E_CANNOTCONNECT;
    const std::lock_guard lock(mutex_);
    *cookie = kCookie;
    sink_ = std::move(events);
    return S_OK;
}

STDMETHODIMP SharedReceiverServer::Unadvise(DWORD cookie) {
    Sink released;  // outside of the lock
    const std::lock_guard lock(mutex_);
    if (cookie != kCookie) return CONNECT_E_NOCONNECTION;
    if (!keepsSink) released.Swap(sink_);
    return S_OK;
}

HRESULT SharedReceiverServer::Called(int method, std::optional<LONG> argument) {
    const std::lock_guard lock(mutex_);
    calls_ += std::to_string(method) + "(" + (argument ? std::to_string(*argument) : "") + ") ";
    const auto found = answers_.find(method);
    if (found == answers_.end()) return S_OK;
    const auto& [status, description] = found->second;
    if (description != nullptr) SetErrorText(description);
    return status;
}

}  // namespace kavrel::tests
