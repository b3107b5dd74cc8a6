// ObjectSafety: tells hosts that run foreign scripts what an object is safe for.
#pragma once

#include <objsafe.h>

#include "frame/dispatch.h"

namespace kavrel {

// A further base of AutomationObject for a class that is safe for untrusted callers and data,
// through IDispatch and its default interface. Other options are refused with E_FAIL, other
// interfaces with E_NOINTERFACE.
class ObjectSafety : public IObjectSafety {
  public:
    STDMETHOD(GetInterfaceSafetyOptions)(REFIID id, DWORD* supported, DWORD* enabled) override;
    STDMETHOD(SetInterfaceSafetyOptions)(REFIID id, DWORD mask, DWORD enabled) override;

  protected:
    explicit ObjectSafety(const ClassDescription& description)
        : interfaceId_(description.interfaceId) {}
    ~ObjectSafety() = default;

  private:
    bool IsSafeInterface(REFIID id) const;

    const IID& interfaceId_;
};

}  // namespace kavrel
