// FreeThreaded: lets every apartment of a process hold an object itself, not a proxy of it.
#pragma once

#include <objidl.h>
#include <unknwn.h>

#include "frame/com_ref.h"

namespace kavrel {

struct ClassDescription;

// For classes with the threading model "Free": a further base of AutomationObject. Without it a
// position could not reach the record of a custom datum that its apartment holds.
class FreeThreaded {
  protected:
    explicit FreeThreaded(const ClassDescription&) {}

    // Answers for IMarshal of `outer`, the object itself; E_NOINTERFACE for anything else, and on
    // platforms without apartments. Thread safety: any thread.
    HRESULT QueryMarshaler(IUnknown& outer, REFIID id, void** object);

  private:
    ComRef<IUnknown> marshaler_;  // made when first asked for
};

}  // namespace kavrel
