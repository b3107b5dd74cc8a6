// The object map: the creatable classes. The automation layer defines it, so that the entry points
// know no class by name.
#pragma once

#include <oaidl.h>

#include <span>

#include "frame/com_ref.h"

namespace kavrel {

struct ObjectMapEntry {
    const CLSID& classId;

    // The number of the registration script among the module's resources.
    unsigned scriptResource;

    // Makes an instance; null when memory is short.
    ComRef<IDispatch> (*createInstance)();
};

// In the order in which classes are registered.
std::span<const ObjectMapEntry> ObjectMap();

}  // namespace kavrel
