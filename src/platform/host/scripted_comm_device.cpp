#include "platform/host/scripted_comm_device.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace kavrel {
namespace {

// The event of each input line.
constexpr std::array<std::pair<std::uint32_t, std::uint32_t>, 4> kLineEvents = {
    {{kModemCtsOn, 0x08}, {kModemDsrOn, 0x10}, {kModemRlsdOn, 0x20}, {kModemRingOn, 0x100}}};

}  // namespace

void ScriptedCommDevice::Feed(std::string_view received) {
    const std::lock_guard lock(mutex_);
    received_.insert(received_.end(), received.begin(), received.end());
    changed_.notify_all();
}

void ScriptedCommDevice::SetLines(std::uint32_t status) {
    Set(lines_, status);
}

void ScriptedCommDevice::SetFoundState(const CommState& state) {
    Set(state_, state);
}

void ScriptedCommDevice::SetFoundTimeouts(const CommTimeouts& timeouts) {
    Set(timeouts_, timeouts);
}

void ScriptedCommDevice::FailCall(CommCall call, int nth, std::uint32_t error) {
    const std::lock_guard lock(mutex_);
    Plan& plan = plans_[static_cast<std::size_t>(call)];
    plan = {.begun = plan.begun, .failAt = plan.begun + nth, .error = error};
}

void ScriptedCommDevice::FailCallsFrom(CommCall call, int nth, std::uint32_t error) {
    FailCall(call, nth, error);
    Set(plans_[static_cast<std::size_t>(call)].failsFromThenOn, true);
}

std::vector<std::string> ScriptedCommDevice::TakeLog() {
    const std::lock_guard lock(mutex_);
    return std::exchange(log_, {});
}

void ScriptedCommDevice::WaitForCalls(CommCall call, int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return plans_[static_cast<std::size_t>(call)].begun >= count; });
}

int ScriptedCommDevice::CallCount(CommCall call) const {
    const std::lock_guard lock(mutex_);
    return plans_[static_cast<std::size_t>(call)].begun;
}

CommResult ScriptedCommDevice::Begin(CommCall call, const std::string& log) {
    if (!log.empty()) log_.push_back(log);
    Plan& plan = plans_[static_cast<std::size_t>(call)];
    ++plan.begun;
    changed_.notify_all();
    const bool fails = plan.failsFromThenOn ? plan.begun >= plan.failAt : plan.begun == plan.failAt;
    if (fails) return {.isDone = false, .error = plan.error};
    if (!isOpen_ && call != CommCall::Open) return {.isDone = false, .error = kInvalidHandle};
    return {};
}

template <typename Condition>
bool ScriptedCommDevice::WaitOpen(std::unique_lock<std::mutex>& lock, std::uint32_t limitMs,
                                  Condition condition) {
    const int opening = opening_;
    const auto isClosed = [&] { return !isOpen_ || opening != opening_; };
    const auto isOver = [&] { return isClosed() || condition(); };
    if (limitMs == 0) {
        changed_.wait(lock, isOver);
    } else {
        changed_.wait_for(lock, std::chrono::milliseconds(limitMs), isOver);
    }
    return !isClosed();
}

CommResult ScriptedCommDevice::Open(const char16_t* name) {
    const std::lock_guard lock(mutex_);
    const std::u16string_view wide(name);
    const CommResult result =
        Begin(CommCall::Open, "Open " + std::string(wide.begin(), wide.end()));
    isOpen_ = result.isDone;
    ++opening_;
    return result;
}

void ScriptedCommDevice::Close() {
    const std::lock_guard lock(mutex_);
    log_.emplace_back("Close");
    isOpen_ = false;
    changed_.notify_all();
}

CommResult ScriptedCommDevice::GetState(CommState& state) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::GetState, "GetState");
    if (result) state = state_;
    return result;
}

CommResult ScriptedCommDevice::SetState(const CommState& state) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::SetState, "SetState");
    if (result) state_ = state;
    return result;
}

CommResult ScriptedCommDevice::GetTimeouts(CommTimeouts& timeouts) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::GetTimeouts, "GetTimeouts");
    if (result) timeouts = timeouts_;
    return result;
}

CommResult ScriptedCommDevice::SetTimeouts(const CommTimeouts& timeouts) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::SetTimeouts, "SetTimeouts");
    if (result) timeouts_ = timeouts;
    return result;
}

CommResult ScriptedCommDevice::Purge(std::uint32_t flags) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::Purge, "Purge " + std::to_string(flags));
    if (result && (flags & kPurgeRxClear) != 0) received_.clear();
    return result;
}

CommResult ScriptedCommDevice::Escape(CommFunction function) {
    const std::lock_guard lock(mutex_);
    return Begin(CommCall::Escape,
                 "Escape " + std::to_string(static_cast<std::uint32_t>(function)));
}

CommResult ScriptedCommDevice::GetModemStatus(std::uint32_t& status) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::GetModemStatus, "GetModemStatus");
    if (result) status = lines_;
    return result;
}

CommResult ScriptedCommDevice::SetMask(std::uint32_t events) {
    const std::lock_guard lock(mutex_);
    const CommResult result = Begin(CommCall::SetMask, "SetMask " + std::to_string(events));
    reportedLines_ = lines_;
    return result;
}

CommResult ScriptedCommDevice::WaitEvent(std::uint32_t& events) {
    std::unique_lock lock(mutex_);
    if (const CommResult result = Begin(CommCall::WaitEvent); !result) return result;
    events = 0;
    if (!WaitOpen(lock, 0, [&] { return lines_ != reportedLines_; }))
        return {.isDone = isWaitSuccessful_, .error = kAborted};
    for (const auto& [line, event] : kLineEvents) {
        if (((lines_ ^ reportedLines_) & line) != 0) events |= event;
    }
    reportedLines_ = lines_;
    return {};
}

CommResult ScriptedCommDevice::Read(std::span<std::uint8_t> buffer, std::size_t& count) {
    std::unique_lock lock(mutex_);
    if (const CommResult result = Begin(CommCall::Read); !result) return result;
    const bool isFirstByteEnough = timeouts_.ReadIntervalTimeout == 0xFFFFFFFF;
    const std::size_t wanted = isFirstByteEnough ? 1 : buffer.size();
    const bool isOpen = WaitOpen(lock, timeouts_.ReadTotalTimeoutConstant, [&] {
        return received_.size() >= wanted || overstatedCount_ != 0;
    });
    if (!isOpen) return {.isDone = false, .error = kAborted};

    count = std::min(buffer.size(), received_.size());
    const auto end = received_.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(received_.begin(), end, buffer.begin());
    received_.erase(received_.begin(), end);
    if (overstatedCount_ != 0) count = std::exchange(overstatedCount_, 0);
    return {};
}

CommResult ScriptedCommDevice::Write(std::span<const std::uint8_t> bytes, std::size_t& count) {
    std::unique_lock lock(mutex_);
    const CommResult result = Begin(CommCall::Write, "Write " + std::to_string(bytes.size()));
    if (!result) return result;
    if (!WaitOpen(lock, 0, [&] { return !areWritesHeld_; }))
        return {.isDone = false, .error = kAborted};
    written_.append(bytes.begin(), bytes.end());
    count = bytes.size();
    return {};
}

}  // namespace kavrel
