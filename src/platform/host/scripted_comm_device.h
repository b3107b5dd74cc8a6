// ScriptedCommDevice: a serial port for tests, which say what it receives, how its lines stand and
// which of its calls fail, and see what it was asked for.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/comm_device.h"

namespace kavrel {

enum class CommCall : std::uint8_t {
    Open,
    GetState,
    SetState,
    GetTimeouts,
    SetTimeouts,
    Purge,
    Escape,
    GetModemStatus,
    SetMask,
    WaitEvent,
    Read,
    Write,
    Count
};

// Thread safety: every member may be called from any thread.
class ScriptedCommDevice final : public CommDevice {
  public:
    // What a call says that Close ended, and one after Close.
    static constexpr std::uint32_t kAborted = 995;
    static constexpr std::uint32_t kInvalidHandle = 6;

    // The script.
    void Feed(std::string_view received);
    void SetLines(std::uint32_t status);
    void SetFoundState(const CommState& state);
    void SetFoundTimeouts(const CommTimeouts& timeouts);
    // From now on, the `nth` call (1 is the next) of this kind fails.
    void FailCall(CommCall call, int nth, std::uint32_t error);
    // And all after it.
    void FailCallsFrom(CommCall call, int nth, std::uint32_t error);
    // The next read claims this many bytes, whatever there is.
    void OverstateNextRead(std::size_t count) { Set(overstatedCount_, count); }
    // Writes wait, as they do while the other side takes nothing.
    void HoldWrites(bool isHeld) { Set(areWritesHeld_, isHeld); }
    // Some drivers end a wait for lines with success when the port is closed.
    void EndWaitsWithSuccess() { Set(isWaitSuccessful_, true); }

    // What happened. The log has a line per call with its argument, without those of the loops
    // (Read, WaitEvent).
    std::vector<std::string> TakeLog();
    std::string written() const { return Get(written_); }
    CommState state() const { return Get(state_); }
    CommTimeouts timeouts() const { return Get(timeouts_); }
    bool isOpen() const { return Get(isOpen_); }
    // Waits until so many calls of this kind have begun since the device was made.
    void WaitForCalls(CommCall call, int count);
    int CallCount(CommCall call) const;

    CommResult Open(const char16_t* name) override;
    void Close() override;
    CommResult GetState(CommState& state) override;
    CommResult SetState(const CommState& state) override;
    CommResult GetTimeouts(CommTimeouts& timeouts) override;
    CommResult SetTimeouts(const CommTimeouts& timeouts) override;
    CommResult Purge(std::uint32_t flags) override;
    CommResult Escape(CommFunction function) override;
    CommResult GetModemStatus(std::uint32_t& status) override;
    CommResult SetMask(std::uint32_t events) override;
    CommResult WaitEvent(std::uint32_t& events) override;
    CommResult Read(std::span<std::uint8_t> buffer, std::size_t& count) override;
    CommResult Write(std::span<const std::uint8_t> bytes, std::size_t& count) override;

  private:
    struct Plan {
        int begun = 0;
        int failAt = 0;
        bool failsFromThenOn = false;
        std::uint32_t error = 0;
    };

    template <typename T>
    void Set(T& field, const T& value) {
        const std::lock_guard lock(mutex_);
        field = value;
        changed_.notify_all();
    }
    template <typename T>
    T Get(const T& field) const {
        const std::lock_guard lock(mutex_);
        return field;
    }

    // Both with the lock held: notes a call and says whether it fails; waits, for a limited time
    // or 0 for ever, and says whether the device is still the one that was open.
    CommResult Begin(CommCall call, const std::string& log = {});
    template <typename Condition>
    bool WaitOpen(std::unique_lock<std::mutex>& lock, std::uint32_t limitMs, Condition condition);

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = false;
    int opening_ = 0;
    std::array<Plan, static_cast<std::size_t>(CommCall::Count)> plans_;
    std::vector<std::string> log_;
    CommState state_;
    CommTimeouts timeouts_;
    std::deque<std::uint8_t> received_;
    std::string written_;
    std::size_t overstatedCount_ = 0;
    bool areWritesHeld_ = false;
    bool isWaitSuccessful_ = false;
    std::uint32_t lines_ = 0;
    std::uint32_t reportedLines_ = 0;
};

}  // namespace kavrel
