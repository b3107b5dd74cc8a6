#include "frame/connection_point.h"

#include <array>

#include "frame/com_enumeration.h"
#include "frame/member_table.h"

namespace kavrel {
namespace {

struct ConnectionPolicy {
    struct Kept {
        DWORD cookie;
        ComRef<IUnknown> sink;
    };
    static const IID& InterfaceId() { return IID_IEnumConnections; }
    static void Copy(const Kept& from, CONNECTDATA& to) {
        to.dwCookie = from.cookie;
        to.pUnk = ComRef<IUnknown>(from.sink).Detach();
    }
};

using ConnectionEnumeration = ComEnumeration<IEnumConnections, CONNECTDATA, ConnectionPolicy>;

}  // namespace

void ConnectionPoint::Raise(DISPID event, std::span<IDispatch* const> arguments) {
    // Late-bound arguments stand in reverse. They stay the caller's.
    std::array<VARIANT, kMaxArguments> reversed;
    const std::size_t count = arguments.size();
    for (std::size_t i = 0; i < count; ++i) {
        VARIANT& argument = reversed[count - 1 - i];
        VariantInit(&argument);
        V_VT(&argument) = VT_DISPATCH;
        V_DISPATCH(&argument) = arguments[i];
    }
    DISPPARAMS parameters{.rgvarg = reversed.data(),
                          .rgdispidNamedArgs = nullptr,
                          .cArgs = static_cast<UINT>(count),
                          .cNamedArgs = 0};
    for (const Connection& connection : Snapshot()) {
        if (!IsConnected(connection.cookie)) continue;
        connection.sink->Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                                nullptr, nullptr, nullptr);
    }
}

std::vector<ConnectionPoint::Connection> ConnectionPoint::Snapshot() {
    const LockScope lock(lock_);
    return connections_;
}

bool ConnectionPoint::IsConnected(DWORD cookie) {
    const LockScope lock(lock_);
    for (const Connection& connection : connections_) {
        if (connection.cookie == cookie) return true;
    }
    return false;
}

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IConnectionPoint)) {
        return E_NOINTERFACE;
    }
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* id) {
    if (id == nullptr) return E_POINTER;
    *id = eventInterfaceId_;
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (container == nullptr) return E_POINTER;
    *container = &owner_;
    owner_.AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    ComRef<IDispatch> dispatch;
    if (FAILED(sink->QueryInterface(eventInterfaceId_, dispatch.ReceiveVoid())) &&
        FAILED(sink->QueryInterface(IID_IDispatch, dispatch.ReceiveVoid()))) {
        return CONNECT_E_CANNOTCONNECT;
    }
    const LockScope lock(lock_);
    if (++lastCookie_ == 0) ++lastCookie_;  // 0 is nobody's
    *cookie = lastCookie_;
    connections_.push_back({*cookie, std::move(dispatch)});
    if (connections_.size() == 1) listener_.OnSinksChanged(true);
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
    ComRef<IDispatch> dropped;  // released when no lock is held
    const LockScope lock(lock_);
    auto at = connections_.begin();
    while (at != connections_.end() && at->cookie != cookie)
        ++at;
    if (at == connections_.end()) return CONNECT_E_NOCONNECTION;
    dropped = std::move(at->sink);
    connections_.erase(at);
    if (connections_.empty()) listener_.OnSinksChanged(false);
    return S_OK;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** enumeration) {
    if (enumeration == nullptr) return E_POINTER;
    std::vector<ConnectionPolicy::Kept> items;
    for (const Connection& connection : Snapshot()) {
        items.push_back({connection.cookie, ComRef<IUnknown>::Share(connection.sink.get())});
    }
    *enumeration = ConnectionEnumeration::Create(std::move(items));
    return *enumeration != nullptr ? S_OK : E_OUTOFMEMORY;
}

}  // namespace kavrel
