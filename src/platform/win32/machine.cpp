#include "platform/machine.h"

#include "platform/win32/client_window.h"
#include "platform/win32/comm_device.h"
#include "platform/win32/registry_store.h"
#include "platform/win32/shared_receiver.h"

namespace kavrel {
namespace {

class WindowsMachine final : public Machine {
  public:
    std::unique_ptr<CommDevice> MakeCommDevice() override { return MakeWin32CommDevice(); }
    RegistryStore& registry() override { return PlatformRegistry(); }
    std::unique_ptr<SharedReceiver> MakeSharedReceiver() override {
        return MakePlatformSharedReceiver();
    }
    std::unique_ptr<ClientWindow> MakeClientWindow(TakeHandOver take, void* context,
                                                   ErrorSlot& error) override {
        return MakeFormSyncWindow(take, context, error);
    }
};

constinit WindowsMachine machine;

}  // namespace

Machine& ThisMachine() {
    return machine;
}

}  // namespace kavrel
