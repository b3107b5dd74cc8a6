#include "automation/support/shared_receiver_server.h"

#include "automation/support/var.h"
#include "platform/win32/shared_receiver_ids.h"

namespace kavrel::tests {

namespace {

// Stays loaded as long as the program: COM loads the same module.
HMODULE Module() {
    static const HMODULE module = LoadLibraryA(KAVREL_BUILD "/tests/sharedreceiver.dll");
    return module;
}

template <typename Function>
Function Export(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(Module(), name)));
}

}  // namespace

SharedReceiverServer::SharedReceiverServer() {
    if (Module() == nullptr) return;
    if (FAILED(Export<HRESULT(WINAPI*)()>("DllRegisterServer")())) return;
    standIn_ = Export<GetSharedReceiverStandIn>(kGetSharedReceiverStandIn)();
    standIn_->Reset();
}

SharedReceiverServer::~SharedReceiverServer() {
    if (standIn_ == nullptr) return;
    standIn_->Reset();
    Export<HRESULT(WINAPI*)()>("DllUnregisterServer")();
}

void SharedReceiverServer::RaiseText(const std::wstring& text) const {
    Var value(text);
    standIn_->Raise(kSharedReceiverDataEvent, value.get());
}

}  // namespace kavrel::tests
