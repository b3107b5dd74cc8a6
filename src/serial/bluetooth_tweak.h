// A setting of the Bluetooth stack for the port on which it connects by itself.
#pragma once

#include <cstdint>

#include "platform/registry_store.h"

namespace kavrel {

// Called before and after a port is opened. Where the stack has its settings for this port, and
// unless `skip`, the stack's browser is switched off before opening when `browserOff`, else on, and
// on again after. Other ports than 8 are left alone. Errors are not reported: a port opens without
// the stack, too.
void BluetoothAutoConnectTweak(RegistryStore& registry, std::int32_t portNumber, bool beforeOpen,
                               bool skip, bool browserOff);

}  // namespace kavrel
