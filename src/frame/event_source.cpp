#include "frame/event_source.h"

#include <utility>
#include <vector>

#include "frame/com_enumeration.h"

namespace kavrel {
namespace {

struct PointPolicy {
    using Kept = ComRef<IConnectionPoint>;
    static const IID& InterfaceId() { return IID_IEnumConnectionPoints; }
    static void Copy(const Kept& from, IConnectionPoint*& to) { to = Kept(from).Detach(); }
};

using PointEnumeration = ComEnumeration<IEnumConnectionPoints, IConnectionPoint*, PointPolicy>;

}  // namespace

STDMETHODIMP EventSource::EnumConnectionPoints(IEnumConnectionPoints** enumeration) {
    if (enumeration == nullptr) return E_POINTER;
    std::vector<PointPolicy::Kept> points{PointPolicy::Kept::Share(&point_)};
    *enumeration = PointEnumeration::Create(std::move(points));
    return *enumeration != nullptr ? S_OK : E_OUTOFMEMORY;
}

STDMETHODIMP EventSource::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
    if (point == nullptr) return E_POINTER;
    *point = nullptr;
    if (!IsEqualIID(id, eventInterfaceId_)) return CONNECT_E_NOCONNECTION;
    *point = &point_;
    point_.AddRef();
    return S_OK;
}

}  // namespace kavrel
