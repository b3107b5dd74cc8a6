// The registry of the platform.
#pragma once

#include "platform/registry_store.h"

namespace kavrel {

// The one store of the process. It has no state and needs no start-up.
RegistryStore& PlatformRegistry();

}  // namespace kavrel
