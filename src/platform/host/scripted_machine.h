// ScriptedMachine: a machine for tests. A new one has no ports, an empty registry, no shared
// receiver, and windows whose messages the test lets through.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host/memory_registry.h"
#include "platform/host/message_window.h"
#include "platform/host/scripted_comm_device.h"
#include "platform/host/scripted_shared_receiver.h"
#include "platform/machine.h"

namespace kavrel {

// Thread safety: every member may be called from any thread; the parts have their own rules.
class ScriptedMachine final : public Machine {
  public:
    // The port of that number, which exists from now on.
    ScriptedCommDevice& Port(std::int32_t number);

    // The port that is called so now, or null.
    ScriptedCommDevice* FindPort(std::u16string_view name);

    MemoryRegistryStore& memoryRegistry() { return registry_; }
    MessageQueue& messages() { return messages_; }

    // From now on no window can be made, for the platform's reason.
    void RefuseWindows(std::uint32_t error) { windowError_ = error; }

    // The receiver-sharing product, which is not installed at first.
    SharedReceiverScript& sharedReceiver() { return sharedReceiver_; }

    std::unique_ptr<CommDevice> MakeCommDevice() override;
    RegistryStore& registry() override { return registry_; }
    std::unique_ptr<SharedReceiver> MakeSharedReceiver() override;
    std::unique_ptr<ClientWindow> MakeClientWindow(TakeHandOver take, void* context,
                                                   ErrorSlot& error) override;

  private:
    static constexpr auto kClassNotRegistered = static_cast<std::int32_t>(0x80040154);

    std::mutex mutex_;
    std::map<std::u16string, std::unique_ptr<ScriptedCommDevice>, std::less<>> ports_;
    MemoryRegistryStore registry_;
    MessageQueue messages_;
    SharedReceiverScript sharedReceiver_{.create = {kClassNotRegistered, ""}};
    std::optional<std::uint32_t> windowError_;
};

}  // namespace kavrel
