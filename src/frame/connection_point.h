// The connection point of a class with one outgoing event interface.
//
// Thread safety: connections may be made, dropped and called from any thread. No lock is held while
// a sink is called: a sink may connect, disconnect, or release the object itself.
#pragma once

#include <ocidl.h>
#include <olectl.h>

#include <span>
#include <vector>

#include "base/thread_annotations.h"
#include "frame/com_ref.h"
#include "platform/lock.h"

namespace kavrel {

class ConnectionPoint final : public IConnectionPoint {
  public:
    // What the owner wants to know: that its first sink came or its last sink went. It is told
    // under the lock, so that it hears of both in their order, and calls no sink.
    class Listener {
      public:
        virtual void OnSinksChanged(bool hasSinks) = 0;

      protected:
        ~Listener() = default;
    };

    // A part of `owner`, whose reference count is its own.
    ConnectionPoint(REFIID eventInterfaceId, IConnectionPointContainer& owner, Listener& listener)
        : eventInterfaceId_(eventInterfaceId), owner_(owner), listener_(listener) {}
    ~ConnectionPoint() = default;
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    // Calls every connected sink in the order of connection; what a sink answers does not matter.
    // A sink that is disconnected meanwhile is not called any more, one that is connected meanwhile
    // not yet. Arguments in their order.
    // REQUIRES: the caller holds a reference to the owner.
    void Raise(DISPID event, std::span<IDispatch* const> arguments);

    STDMETHOD(QueryInterface)(REFIID id, void** object) override;
    STDMETHOD_(ULONG, AddRef)() override { return owner_.AddRef(); }
    STDMETHOD_(ULONG, Release)() override { return owner_.Release(); }
    STDMETHOD(GetConnectionInterface)(IID* id) override;
    STDMETHOD(GetConnectionPointContainer)(IConnectionPointContainer** container) override;
    STDMETHOD(Advise)(IUnknown* sink, DWORD* cookie) override;
    STDMETHOD(Unadvise)(DWORD cookie) override;
    STDMETHOD(EnumConnections)(IEnumConnections** enumeration) override;

  private:
    struct Connection {
        DWORD cookie;
        ComRef<IDispatch> sink;
    };

    std::vector<Connection> Snapshot();
    bool IsConnected(DWORD cookie);

    const IID& eventInterfaceId_;
    IConnectionPointContainer& owner_;
    Listener& listener_;
    Lock lock_;
    std::vector<Connection> connections_ KAVREL_GUARDED_BY(lock_);
    DWORD lastCookie_ KAVREL_GUARDED_BY(lock_) = 0;
};

}  // namespace kavrel
