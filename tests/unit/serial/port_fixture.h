// A serial port over a scripted device, for tests.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/host/memory_registry.h"
#include "platform/host/scripted_comm_device.h"
#include "serial/serial_port.h"

namespace kavrel {

// Longer than anything takes that is not broken.
inline constexpr std::uint32_t kPatienceMs = 30'000;

inline std::string ErrorOf(const ErrorSlot& slot) {
    return slot.IsSet() ? std::to_string(slot.code()) + " " + std::string(slot.text()) : "";
}

inline std::string TextOf(const Ref<ByteBlock>& block) {
    return block ? std::string(block->bytes().begin(), block->bytes().end()) : "(none)";
}

inline Ref<ByteBlock> BlockOf(std::string_view text) {
    return MakeRef<ByteBlock>(std::vector<std::uint8_t>(text.begin(), text.end()));
}

class PortTest : public testing::Test {
  protected:
    PortTest() : PortTest(std::make_unique<ScriptedCommDevice>()) {}

    std::string Error() const { return ErrorOf(port_->error()); }

    std::string Failure() const {
        ErrorSlot failure;
        port_->CopyFailure(failure);
        return ErrorOf(failure);
    }

    // Without the line watch, which asks the device for things of its own.
    void OpenQuietly(TimeoutMode mode = TimeoutMode::FirstByte) {
        port_->SetPort(3);
        port_->SetWatchLines(false);
        port_->SetTimeoutMode(mode);
        port_->Open();
        ASSERT_EQ(Error(), "");
    }

    void OpenWatching() {
        port_->Open();
        ASSERT_EQ(Error(), "");
        device_.WaitForCalls(CommCall::WaitEvent, 1);
    }

    // Waits for an event and resets it.
    static void Await(const Ref<Event>& event) {
        ASSERT_TRUE(event->Wait(kPatienceMs));
        event->Reset();
    }

    // What has come, as soon as it has so many bytes.
    std::string Receive(std::size_t count) {
        std::string text;
        while (text.size() < count) {
            const Ref<Event> received = port_->DataReceivedEvent();
            if (!received->Wait(kPatienceMs)) return text + " (and no more)";
            received->Reset();
            while (const Ref<ByteBlock> block = port_->TakeReceived())
                text += TextOf(block);
        }
        return text;
    }

    // The numbers of bytes that so many completed writes report, or fewer when no more come.
    std::vector<std::uint32_t> WriteReports(std::size_t count) {
        std::vector<std::uint32_t> reports;
        const Ref<Event> done = port_->WriteDoneEvent();
        while (reports.size() < count && done->Wait(kPatienceMs)) {
            done->Reset();
            while (const Ref<PortEvent> report = port_->TakeWriteDone())
                reports.push_back(report->value());
        }
        return reports;
    }

    ScriptedCommDevice& device_;  // the port's
    MemoryRegistryStore registry_;
    Ref<SerialPort> port_;

  private:
    explicit PortTest(std::unique_ptr<ScriptedCommDevice> device)
        : device_(*device), port_(MakeRef<SerialPort>(std::move(device), registry_)) {}
};

}  // namespace kavrel
