// The one control, and what it knows of connections.
#pragma once

#include <wrl/client.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "shared_receiver/stand_in.h"

namespace kavrel::tests {

class Control final : public SharedReceiverStandIn {
  public:
    static Control& Get();

    void Reset() override;
    void Answer(int method, HRESULT status, const wchar_t* description) override;
    const char* calls() const override;
    void OfferEvents(bool offer) override { offersEvents_ = offer; }
    void KeepSinks(bool keep) override { keepsSinks_ = keep; }
    void Raise(DISPID event, VARIANT* value) override;
    int objects() const override { return objects_; }
    int sinks() const override;

    // The objects' side.
    void ObjectMade() { ++objects_; }
    void ObjectGone() { --objects_; }
    bool OffersEvents() const { return offersEvents_; }
    HRESULT Called(int method, std::optional<LONG> argument);
    HRESULT Connect(IUnknown* sink, DWORD* cookie);
    HRESULT Disconnect(DWORD cookie);

  private:
    struct Failure {
        HRESULT status;
        std::optional<std::wstring> description;
    };
    using Sink = Microsoft::WRL::ComPtr<IDispatch>;

    mutable std::mutex mutex_;
    std::map<int, Failure> answers_;
    std::string calls_;
    std::map<DWORD, Sink> connections_;
    std::vector<Sink> kept_;
    DWORD lastCookie_ = 0;
    std::atomic<int> objects_ = 0;
    std::atomic<bool> offersEvents_ = true;
    std::atomic<bool> keepsSinks_ = false;
};

}  // namespace kavrel::tests
