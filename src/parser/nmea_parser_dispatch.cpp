// What the parser does with a sentence: the updates of the receiver's state, and the events.
#include <cassert>
#include <utility>

#include "parser/nmea_parser.h"
#include "platform/clock.h"
#include "results/decoded_sentence.h"

namespace kavrel {
namespace {

struct DerivedEvent {
    ParserEvent event;
    EventCode code;
};

// By interval slot.
constexpr DerivedEvent kDerivedEvents[] = {
    {ParserEvent::GpsFix, EventCode::GpsFix},
    {ParserEvent::Satellites, EventCode::Satellites},
    {ParserEvent::Movement, EventCode::Movement},
    {ParserEvent::Quality, EventCode::Quality},
};

constexpr const DerivedEvent& DerivedEventOf(IntervalSlot slot) {
    return kDerivedEvents[static_cast<std::size_t>(slot)];
}

}  // namespace

void NmeaParser::Dispatch(WorkItem item) {
    switch (item.kind) {
        case WorkKind::Sentence:
            DispatchSentence(
                Ref<NmeaSentence>::Adopt(static_cast<NmeaSentence*>(item.object.Detach())));
            break;
        case WorkKind::ComStatus:
            DispatchComStatus(std::move(item.object));
            break;
    }
}

void NmeaParser::DispatchComStatus(Ref<Record> status) {
    if (noEvents_) return;
    if (!status) status = GetComStatus();
    Raise(EventCode::ComStatus, ParserEvent::ComStatus, HandlerOf(ParserEvent::ComStatus),
          std::move(status));
}

void NmeaParser::DispatchSentence(Ref<NmeaSentence> reference) {
    NmeaSentence& sentence = *reference;
    const SentenceType type = sentence.Type();
    Ref<Record> decoded;  // keeps the sentence once it has taken it over
    if (!allEventsGeneric_) {
        switch (type) {
            case SentenceType::Rmc:
                decoded = RaiseDecoded<NmeaRmc>(ParserEvent::Rmc, reference);
                UpdateFix(sentence);
                UpdateMovement(sentence);
                break;
            case SentenceType::Gll:
                decoded = RaiseDecoded<NmeaGll>(ParserEvent::Gll, reference);
                UpdateFix(sentence);
                break;
            case SentenceType::Gga:
                decoded = RaiseDecoded<NmeaGga>(ParserEvent::Gga, reference);
                UpdateFix(sentence);
                break;
            case SentenceType::Gsv:
                UpdateSatellites(sentence);
                break;
            case SentenceType::Gsa:
                UpdateQuality(sentence);
                UpdateSatellites(sentence);
                break;
            case SentenceType::Vtg:
                UpdateMovement(sentence);
                break;
            case SentenceType::Other:
                break;
        }
    }
    wasGsa_ = type == SentenceType::Gsa;
    RaiseGeneric(sentence);
}

void NmeaParser::RaiseGeneric(NmeaSentence& sentence) {
    if (noEvents_) return;
    if (isQueued_) {
        queue_->Put(EventCode::Generic, Ref<NmeaSentence>::Share(&sentence));
        return;
    }
    const EventHandler handler = HandlerOf(ParserEvent::Generic);
    if (handler) Call(handler, ParserEvent::Generic, sentence);
}

template <typename T>
Ref<Record> NmeaParser::RaiseDecoded(ParserEvent event, Ref<NmeaSentence>& sentence) {
    if (noEvents_) return nullptr;
    const EventHandler handler = HandlerOf(event);
    if (!handler) return nullptr;
    auto decoded = MakeRef<T>(std::move(sentence), gpsDatum_.load());
    Call(handler, event, *decoded);
    return decoded;
}

void NmeaParser::UpdateFix(const NmeaSentence& sentence) {
    if (!IsWanted(IntervalSlot::GpsFix)) return;
    const SentenceType type = sentence.Type();
    const FixValues fix = fixBuilder_.Build(sentence);
    const bool isValid = fix.type != kFixNone;
    const std::uint32_t nowMs = isValid ? TickCountMs() : 0;

    // An event that is switched off still keeps the clock of the others going.
    clock_.SetNow(fix.utc);
    const Turn turn = TakeTurn(IntervalSlot::GpsFix);
    bool hasStatusChanged;
    ComStatusValues status;
    {
        const LibraryLockScope lock;
        hasStatusChanged = comStatus_.NoteFix(isValid, nowMs);
        status = comStatus_.values();
    }
    Ref<GpsFix> record;
    if (turn.isPublished || turn.isRaised) record = MakeRef<GpsFix>(fix, gpsDatum_.load());
    fixBuilder_.Keep(type, fix);
    // From here on callbacks run, and the views of `fix` may end.
    if (hasStatusChanged) RaiseComStatus(status);
    if (record) Hand(IntervalSlot::GpsFix, turn, fixes_, std::move(record), fix.type);
}

void NmeaParser::UpdateMovement(const NmeaSentence& sentence) {
    const Turn turn = TakeTurn(IntervalSlot::Movement);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(IntervalSlot::Movement, turn, movements_, MakeRef<Movement>(DecodeMovement(sentence)));
}

void NmeaParser::UpdateQuality(const NmeaSentence& sentence) {
    const Turn turn = TakeTurn(IntervalSlot::Quality);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(IntervalSlot::Quality, turn, qualities_, MakeRef<Quality>(DecodeQuality(sentence)));
}

void NmeaParser::UpdateSatellites(const NmeaSentence& sentence) {
    constexpr IntervalSlot kSlot = IntervalSlot::Satellites;
    if (!IsWanted(kSlot)) return;
    if (!noEvents_ && Wishes().intervals.Get(kSlot) == EventIntervals::kOff) return;
    if (!accumulator_.AddGsv(sentence) && !accumulator_.AddGsa(sentence, wasGsa_)) return;
    const Turn turn = TakeTurn(IntervalSlot::Satellites);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(IntervalSlot::Satellites, turn, satellites_, MakeRef<Satellites>(accumulator_.picture()));
}

const NmeaParser::ClientWishes& NmeaParser::Wishes() {
    const std::uint32_t version = wishesVersion_.load(std::memory_order_acquire);
    if (version != currentVersion_) {
        const LibraryLockScope lock;
        currentWishes_ = wishes_;
        currentVersion_ = version;
    }
    return currentWishes_;
}

bool NmeaParser::IsWanted(IntervalSlot slot) {
    return noEvents_ || isQueued_ || HandlerOf(DerivedEventOf(slot).event);
}

NmeaParser::Turn NmeaParser::TakeTurn(IntervalSlot slot) {
    if (noEvents_) return {.isPublished = true};
    const ClientWishes& wishes = Wishes();
    const EventHandler handler = wishes.sink.HandlerOf(DerivedEventOf(slot).event);
    if (!isQueued_ && !handler) return {};
    return {.isRaised = clock_.TakeTurn(slot, wishes.intervals.Get(slot)), .handler = handler};
}

template <typename T>
void NmeaParser::Hand(IntervalSlot slot, const Turn& turn, SnapshotSlot<T>& snapshots,
                      Ref<T> object, std::int32_t level) {
    if (turn.isPublished) {
        snapshots.Publish(std::move(object), level);
    } else {
        const auto& [event, code] = DerivedEventOf(slot);
        Raise(code, event, turn.handler, std::move(object));
    }
}

void NmeaParser::RaiseComStatus(const ComStatusValues& status) {
    if (noEvents_) return;
    Raise(EventCode::ComStatus, ParserEvent::ComStatus, HandlerOf(ParserEvent::ComStatus),
          MakeRef<ComStatus>(status));
}

void NmeaParser::Raise(EventCode code, ParserEvent event, const EventHandler& handler,
                       Ref<Record> object) {
    if (isQueued_) {
        queue_->Put(code, std::move(object));
    } else if (handler) {
        Call(handler, event, *object);
    }
}

void NmeaParser::Call(const EventHandler& handler, ParserEvent event, Record& object) {
    assert(!libraryLock.IsHeldByThisThread());
    handler.callback(handler.context, event, object);
}

}  // namespace kavrel
