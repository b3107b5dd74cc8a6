#include "platform/win32/shared_receiver.h"

#include <ocidl.h>
#include <oleauto.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "platform/win32/shared_receiver_ids.h"
#include "platform/win32/shared_receiver_sink.h"

namespace kavrel {
namespace {

struct ReleaseObject {
    void operator()(IUnknown* object) const { object->Release(); }
};
struct FreeString {
    void operator()(OLECHAR* text) const { SysFreeString(text); }
};
template <typename Interface>
using Owned = std::unique_ptr<Interface, ReleaseObject>;
using OwnedString = std::unique_ptr<OLECHAR, FreeString>;

// The cookie of no connection.
constexpr DWORD kNotConnected = 0xFEFEFEFE;

// The description in the calling thread's error object, which it takes; empty when there is none.
std::string TakeErrorText() {
    IErrorInfo* found = nullptr;
    if (GetErrorInfo(0, &found) != S_OK) return {};
    const Owned<IErrorInfo> info(found);
    BSTR description = nullptr;
    if (FAILED(info->GetDescription(&description))) return {};
    const OwnedString wide(description);

    const auto length = static_cast<int>(SysStringLen(description));
    const int size =
        WideCharToMultiByte(CP_ACP, 0, description, length, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, description, length, text.data(), size, nullptr, nullptr);
    return text;
}

SharedReceiverResult Plain(HRESULT status) {
    return {.status = status, .errorText = {}};
}

class Win32SharedReceiver final : public SharedReceiver {
  public:
    ~Win32SharedReceiver() override { Disconnect(); }

    SharedReceiverResult Create() override {
        // A thread that has an apartment keeps it; CoUninitialize is never called, because the
        // thread is the host's.
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        void* made = nullptr;
        const HRESULT status = CoCreateInstance(kSharedReceiverClass, nullptr, CLSCTX_INPROC_SERVER,
                                                kSharedReceiverInterface, &made);
        if (SUCCEEDED(status)) object_.reset(static_cast<SharedReceiverInterface*>(made));
        return Plain(status);
    }

    SharedReceiverResult Connect(SharedReceiverListener& listener) override {
        void* found = nullptr;
        HRESULT status = object_->QueryInterface(IID_IConnectionPointContainer, &found);
        if (FAILED(status)) return Plain(status);
        const Owned<IConnectionPointContainer> container(
            static_cast<IConnectionPointContainer*>(found));

        IConnectionPoint* point = nullptr;
        status = container->FindConnectionPoint(kSharedReceiverEvents, &point);
        if (FAILED(status)) return Plain(status);
        point_.reset(point);
        sink_.reset(new SharedReceiverSink(listener));
        status = point_->Advise(sink_.get(), &cookie_);
        if (FAILED(status)) cookie_ = kNotConnected;
        return Plain(status);
    }

    SharedReceiverResult CallMethod1(std::int32_t argument) override {
        return Call(&SharedReceiverInterface::Method1, argument);
    }
    SharedReceiverResult CallMethod2(std::int32_t argument) override {
        return Call(&SharedReceiverInterface::Method2, argument);
    }
    SharedReceiverResult CallMethod4() override { return Call(&SharedReceiverInterface::Method4); }
    SharedReceiverResult CallMethod6(std::int32_t argument) override {
        return Call(&SharedReceiverInterface::Method6, argument);
    }

    void Release() override { Disconnect(); }

  private:
    template <typename Method, typename... Arguments>
    SharedReceiverResult Call(Method method, Arguments... arguments) {
        SetErrorInfo(0, nullptr);  // what an earlier call has left is not this one's
        const HRESULT status = (object_.get()->*method)(arguments...);
        if (SUCCEEDED(status)) return Plain(status);
        return {.status = status, .errorText = TakeErrorText()};
    }

    // The listener goes first: the product may raise an event while it is told.
    void Disconnect() {
        if (sink_ != nullptr) sink_->Detach();
        if (cookie_ != kNotConnected) point_->Unadvise(std::exchange(cookie_, kNotConnected));
        point_.reset();
        sink_.reset();
        object_.reset();
    }

    Owned<SharedReceiverInterface> object_;
    Owned<IConnectionPoint> point_;
    Owned<SharedReceiverSink> sink_;
    DWORD cookie_ = kNotConnected;
};

}  // namespace

std::unique_ptr<SharedReceiver> MakePlatformSharedReceiver() {
    return std::make_unique<Win32SharedReceiver>();
}

}  // namespace kavrel
