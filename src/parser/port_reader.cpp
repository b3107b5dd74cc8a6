#include "parser/port_reader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kavrel {

bool PortReader::IsComplete() const {
    const auto isUsable = [](const Ref<Event>& event) { return event && event->IsUsable(); };
    return thread_ && thread_->IsComplete() && isUsable(threadStop_) && isUsable(start_) &&
           isUsable(disable_) && isUsable(acknowledge_) && source_.IsComplete();
}

void PortReader::Ask(Event& request) {
    request.Signal();
    acknowledge_->Wait(kWaitForever);
    acknowledge_->Reset();
}

bool PortReader::Enable(const PortChoice& choice, ErrorSlot& error) {
    thread_->Start(*this, nullptr);
    error.CopyFrom(&thread_->error());
    if (error.IsSet()) return false;
    if (choice.IsFixedPort() && !source_.OpenFixedPort(choice, error)) return false;

    choice_ = choice;
    isAskedToLeave_ = false;
    Ask(*start_);
    error.CopyFrom(&beginError_);
    return !error.IsSet();
}

void PortReader::Disable() {
    isAskedToLeave_ = true;
    Ask(*disable_);
}

void PortReader::Stop() {
    if (!thread_ || !thread_->IsRunning()) return;
    isAskedToLeave_ = true;
    threadStop_->Signal();
    thread_->Stop();
    threadStop_->Reset();
}

void PortReader::ThreadBody(WorkerThread& /*thread*/, Record* /*argument*/) {
    const std::array<Event*, 2> idle = {threadStop_.get(), start_.get()};
    for (;;) {
        constexpr std::size_t kStart = 1;
        if (WaitAny(idle, kWaitForever) != kStart) return;
        start_->Reset();
        const bool hasBegun = source_.Begin(choice_, beginError_);
        acknowledge_->Signal();
        if (!hasBegun) continue;

        const End end = Read();
        source_.End();
        if (end == End::Stopped) return;
        acknowledge_->Signal();
    }
}

PortReader::End PortReader::Read() {
    for (;;) {
        constexpr std::size_t kOwnEvents = 2;
        std::array<Event*, kOwnEvents + PortSource::SignalCount> events = {threadStop_.get(),
                                                                           disable_.get()};
        const auto ofSource = source_.Events();
        std::copy(ofSource.begin(), ofSource.end(), events.begin() + kOwnEvents);

        const std::optional<std::size_t> woken = WaitAny(events, source_.WaitLimitMs());
        if (!woken.has_value()) {
            source_.OnTimeOut();
            continue;
        }
        if (*woken == 0) return End::Stopped;
        events[*woken]->Reset();
        if (*woken == 1) return End::Disabled;
        Heed(static_cast<PortSource::Signal>(*woken - kOwnEvents));
    }
}

void PortReader::Heed(PortSource::Signal signal) {
    switch (signal) {
        case PortSource::SettingsChanged:
            listener_.OnSettingsChanged(source_.Current());
            break;
        case PortSource::ValidNmeaSeen:
            listener_.OnValidNmea(source_.Current());
            break;
        case PortSource::Failed:
            DeliverSentences();
            if (source_.OnFailed()) listener_.OnSourceEnded();
            break;
        case PortSource::DataReady:
            DeliverSentences();
            listener_.OnDataRead();
            break;
        case PortSource::SignalCount:
            break;
    }
}

void PortReader::DeliverSentences() {
    while (!IsAskedToLeave()) {
        Ref<NmeaSentence> sentence = source_.TakeSentence();
        if (!sentence) return;
        listener_.OnSentence(std::move(sentence));
    }
}

}  // namespace kavrel
