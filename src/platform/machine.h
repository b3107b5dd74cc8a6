// Machine: what the engine needs of the machine that it runs on and tests must be able to replace
// or break. ThisMachine() is the real one.
#pragma once

#include <memory>

#include "base/error_slot.h"
#include "platform/client_window.h"
#include "platform/comm_device.h"
#include "platform/registry_store.h"
#include "platform/shared_receiver.h"

namespace kavrel {

// Thread safety: every member may be called from any thread.
class Machine {
  public:
    virtual ~Machine() = default;

    virtual std::unique_ptr<CommDevice> MakeCommDevice() = 0;
    virtual RegistryStore& registry() = 0;
    virtual std::unique_ptr<SharedReceiver> MakeSharedReceiver() = 0;

    // A window on the calling thread; null when there can be none, with what the platform said in
    // `error`.
    virtual std::unique_ptr<ClientWindow> MakeClientWindow(TakeHandOver take, void* context,
                                                           ErrorSlot& error) = 0;
};

// On the build machine: one without ports, without a registry and without windows.
Machine& ThisMachine();

}  // namespace kavrel
