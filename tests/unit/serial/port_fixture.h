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
#include "unit/dialogue.h"

namespace kavrel {

// Longer than anything takes that is not broken.
inline constexpr std::uint32_t kPatienceMs = 30'000;

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

    // What has come, as soon as it has so many bytes.
    std::string Receive(std::size_t count) {
        std::string text;
        while (text.size() < count) {
            const Ref<Event> received = port_->DataReceivedEvent();
            if (!received->Wait(kPatienceMs)) return text + " (and no more)";
            received->Reset();
            while (const Ref<ByteBlock> block = port_->TakeReceived()) {
                EXPECT_TRUE(!block->bytes().empty() && block->bytes().size() <= 256);
                text += TextOf(block);
            }
        }
        return text;
    }

    // The numbers of bytes that so many completed writes report, or fewer when no more come.
    std::string WriteReports(int count) {
        std::string reports;
        const Ref<Event> done = port_->WriteDoneEvent();
        while (count > 0 && done->Wait(kPatienceMs)) {
            done->Reset();
            for (; const Ref<PortEvent> report = port_->TakeWriteDone(); --count)
                reports += (reports.empty() ? "" : " ") + std::to_string(report->value());
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
