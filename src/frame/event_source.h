// EventSource: gives an automation class its connection point.
#pragma once

#include <ocidl.h>

#include "frame/connection_point.h"
#include "frame/dispatch.h"

namespace kavrel {

// For classes with an event interface: a further base of AutomationObject, which supplies IUnknown.
class EventSource : public IConnectionPointContainer, protected ConnectionPoint::Listener {
  public:
    STDMETHOD(EnumConnectionPoints)(IEnumConnectionPoints** enumeration) override;
    STDMETHOD(FindConnectionPoint)(REFIID id, IConnectionPoint** point) override;

  protected:
    // REQUIRES: the class has an event interface.
    explicit EventSource(const ClassDescription& description)
        : eventInterfaceId_(*description.eventInterfaceId),
          point_(eventInterfaceId_, *this, *this) {}
    ~EventSource() = default;

    ConnectionPoint& connectionPoint() { return point_; }

  private:
    const IID& eventInterfaceId_;
    ConnectionPoint point_;
};

}  // namespace kavrel
