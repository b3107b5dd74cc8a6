#include "parser/nmea_parser.h"

#include <new>
#include <utility>

namespace kavrel {

NmeaParser::NmeaParser(Machine& machine)
    : formSync_(new (std::nothrow) FormSync(machine, error())), portReader_(machine, *this) {}

bool NmeaParser::RequirePortDisabled() {
    error().Clear();
    if (!isPortEnabled_) return true;
    error().Set(kErrorWrongState, Message::PortMustNotBeEnabled);
    return false;
}

void NmeaParser::Parse(std::string_view text) {
    if (!RequirePortDisabled()) return;
    if (!parseAssembler_.Append(text)) return;
    while (parseAssembler_.HasSentence()) {
        parseAssembler_.GiveBack(DispatchSentence(parseAssembler_.TakeSentence()));
    }
    // What a callback did to this parser may have failed; Parse did not.
    error().Clear();
}

void NmeaParser::SetAllEventsGeneric(bool isOn) {
    error().Clear();
    allEventsGeneric_ = isOn;
}

void NmeaParser::SetGpsDatum(std::int16_t datum) {
    error().Clear();
    if (datum < kFirstDatum || datum > kLastDatum) {
        error().Set(kErrorInvalidArgument, Message::UnknownDatum);
        return;
    }
    gpsDatum_ = datum;
}

void NmeaParser::SetNoEvents(bool isOn) {
    if (RequirePortDisabled()) noEvents_ = isOn;
}

void NmeaParser::SetChecksumMandatory(bool isOn) {
    error().Clear();
    parseAssembler_.SetChecksumMandatory(isOn);
    portReader_.SetChecksumMandatory(isOn);
}

void NmeaParser::SetEventInterval(std::int32_t intervalMs, std::int32_t eventType) {
    error().Clear();
    const std::optional<IntervalSlot> slot = IntervalSlotOf(eventType);
    if (!slot.has_value()) {
        error().Set(kErrorInvalidArgument, Message::UnknownEventType);
        return;
    }
    const LibraryLockScope lock;
    wishes_.intervals.Set(*slot, intervalMs);
    wishesVersion_.fetch_add(1, std::memory_order_release);
}

void NmeaParser::SetEventSink(const EventSink& sink) {
    const LibraryLockScope lock;
    wishes_.sink = sink;
    wishesVersion_.fetch_add(1, std::memory_order_release);
}

void NmeaParser::SetDirectDelivery(bool isOn) {
    error().Clear();
    directDelivery_ = isOn;
}

void NmeaParser::SetQueuedDelivery(bool isOn) {
    error().Clear();
    if (isOn && queue_ == nullptr) queue_ = std::make_unique<EventQueue>();
    isQueued_ = isOn;
}

std::optional<QueuedEvent> NmeaParser::TakeQueuedEvent() {
    return queue_ != nullptr ? queue_->Take() : std::nullopt;
}

void NmeaParser::StopQueue() {
    if (queue_ != nullptr) queue_->Stop();
}

bool NmeaParser::RequireNoEvents() {
    error().Clear();
    if (noEvents_) return true;
    error().Set(kErrorWrongState, Message::NoEventsMustBeSet);
    return false;
}

Ref<GpsFix> NmeaParser::GetGpsFix(std::int32_t timeoutMs, std::int32_t fixType) {
    return RequireNoEvents() ? fixes_.Query(timeoutMs, fixType) : nullptr;
}

Ref<Satellites> NmeaParser::GetSatellites(std::int32_t timeoutMs) {
    return RequireNoEvents() ? satellites_.Query(timeoutMs) : nullptr;
}

Ref<Movement> NmeaParser::GetMovement(std::int32_t timeoutMs) {
    return RequireNoEvents() ? movements_.Query(timeoutMs) : nullptr;
}

Ref<Quality> NmeaParser::GetQuality(std::int32_t timeoutMs) {
    return RequireNoEvents() ? qualities_.Query(timeoutMs) : nullptr;
}

Ref<ComStatus> NmeaParser::GetComStatus() {
    error().Clear();
    return ComStatusNow();
}

Ref<ComStatus> NmeaParser::ComStatusNow() {
    ComStatusValues values;
    {
        const LibraryLockScope lock;
        values = comStatus_.values();
    }
    return MakeRef<ComStatus>(values);
}

}  // namespace kavrel
