#include "platform/host/scripted_machine.h"

#include <string>

namespace kavrel {
namespace {

constexpr std::uint32_t kNotFound = 2;
constexpr std::uint32_t kAccessDenied = 5;

// Becomes the machine's port of the name that it is opened with.
class NamedDevice final : public CommDevice {
  public:
    explicit NamedDevice(ScriptedMachine& machine) : machine_(machine) {}
    ~NamedDevice() override { NamedDevice::Close(); }

    CommResult Open(const char16_t* name) override {
        ScriptedCommDevice* const port = machine_.FindPort(name);
        if (port == nullptr) return {false, kNotFound};
        if (port->isOpen()) return {false, kAccessDenied};
        const CommResult result = port->Open(name);
        if (result) port_ = port;
        return result;
    }
    void Close() override {
        if (port_ != nullptr) port_->Close();
    }
    CommResult GetState(CommState& state) override { return port_->GetState(state); }
    CommResult SetState(const CommState& state) override { return port_->SetState(state); }
    CommResult GetTimeouts(CommTimeouts& timeouts) override { return port_->GetTimeouts(timeouts); }
    CommResult SetTimeouts(const CommTimeouts& timeouts) override {
        return port_->SetTimeouts(timeouts);
    }
    CommResult Purge(std::uint32_t flags) override { return port_->Purge(flags); }
    CommResult Escape(CommFunction function) override { return port_->Escape(function); }
    CommResult GetModemStatus(std::uint32_t& status) override {
        return port_->GetModemStatus(status);
    }
    CommResult SetMask(std::uint32_t events) override { return port_->SetMask(events); }
    CommResult WaitEvent(std::uint32_t& events) override { return port_->WaitEvent(events); }
    CommResult Read(std::span<std::uint8_t> buffer, std::size_t& count) override {
        return port_->Read(buffer, count);
    }
    CommResult Write(std::span<const std::uint8_t> bytes, std::size_t& count) override {
        return port_->Write(bytes, count);
    }

  private:
    ScriptedMachine& machine_;
    ScriptedCommDevice* port_ = nullptr;
};

}  // namespace

ScriptedCommDevice& ScriptedMachine::Port(std::int32_t number) {
    const std::string digits = std::to_string(number);
    const std::u16string name = u"COM" + std::u16string(digits.begin(), digits.end()) + u":";
    const std::lock_guard lock(mutex_);
    std::unique_ptr<ScriptedCommDevice>& port = ports_[name];
    if (port == nullptr) port = std::make_unique<ScriptedCommDevice>();
    return *port;
}

ScriptedCommDevice* ScriptedMachine::FindPort(std::u16string_view name) {
    const std::lock_guard lock(mutex_);
    const auto at = ports_.find(name);
    return at != ports_.end() ? at->second.get() : nullptr;
}

std::unique_ptr<CommDevice> ScriptedMachine::MakeCommDevice() {
    return std::make_unique<NamedDevice>(*this);
}

std::unique_ptr<SharedReceiver> ScriptedMachine::MakeSharedReceiver() {
    return std::make_unique<ScriptedSharedReceiver>(sharedReceiver_);
}

std::unique_ptr<ClientWindow> ScriptedMachine::MakeClientWindow(TakeHandOver take, void* context,
                                                                ErrorSlot& error) {
    if (!windowError_.has_value()) return messages_.MakeWindow(take, context);
    error.Set(*windowError_, Message::WindowFailed);
    return nullptr;
}

}  // namespace kavrel
