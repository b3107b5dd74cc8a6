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

// The values of a sentence: decoded once, and again only when a client has changed the sentence.
class Decoding {
  public:
    explicit Decoding(const NmeaSentence& sentence)
        : sentence_(sentence),
          changeCount_(sentence.ChangeCount()),
          values_(DecodeValues(sentence)) {}

    const SentenceValues& values() {
        if (changeCount_ != sentence_.ChangeCount()) {
            changeCount_ = sentence_.ChangeCount();
            values_ = DecodeValues(sentence_);
        }
        return values_;
    }

  private:
    const NmeaSentence& sentence_;
    std::uint32_t changeCount_;
    SentenceValues values_;
};

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
    if (!status) status = ComStatusNow();
    Raise(EventCode::ComStatus, ParserEvent::ComStatus, HandlerOf(ParserEvent::ComStatus),
          std::move(status));
}

Ref<NmeaSentence> NmeaParser::DispatchSentence(Ref<NmeaSentence> sentence) {
    const SentenceType type = sentence->Type();
    if (!allEventsGeneric_) {
        switch (type) {
            case SentenceType::Rmc: {
                Decoding decoding(*sentence);
                RaiseDecoded(ParserEvent::Rmc, sentence, decoding.values(), spares_.rmc);
                UpdateFix(decoding.values());
                UpdateMovement(decoding.values());
                break;
            }
            case SentenceType::Gll: {
                Decoding decoding(*sentence);
                RaiseDecoded(ParserEvent::Gll, sentence, decoding.values(), spares_.gll);
                UpdateFix(decoding.values());
                break;
            }
            case SentenceType::Gga: {
                Decoding decoding(*sentence);
                RaiseDecoded(ParserEvent::Gga, sentence, decoding.values(), spares_.gga);
                UpdateFix(decoding.values());
                break;
            }
            case SentenceType::Gsv:
                UpdateSatellites(*sentence);
                break;
            case SentenceType::Gsa:
                UpdateQuality(*sentence);
                UpdateSatellites(*sentence);
                break;
            case SentenceType::Vtg:
                UpdateMovement(DecodeValues(*sentence));
                break;
            case SentenceType::Other:
                break;
        }
    }
    wasGsa_ = type == SentenceType::Gsa;
    RaiseGeneric(*sentence);
    return sentence;
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
void NmeaParser::RaiseDecoded(ParserEvent event, Ref<NmeaSentence>& sentence,
                              const SentenceValues& values, Spare<T>& spare) {
    if (noEvents_) return;
    const EventHandler handler = HandlerOf(event);
    if (!handler) return;
    CallDecoded(handler, event, sentence, spare.Make(std::move(sentence), values, gpsDatum_.load()),
                spare);
}

void NmeaParser::CallDecoded(const EventHandler& handler, ParserEvent event,
                             Ref<NmeaSentence>& sentence, Ref<DecodedSentence> decoded,
                             SpareRecord& spare) {
    Call(handler, event, *decoded);
    if (decoded.IsOnly()) {
        sentence = decoded->TakeSentence();
        spare.GiveBack(std::move(decoded));
    } else {
        sentence = Ref<NmeaSentence>::Share(&decoded->sentence());
    }
}

void NmeaParser::UpdateFix(const SentenceValues& values) {
    if (!IsWanted(IntervalSlot::GpsFix)) return;
    const FixValues fix = fixBuilder_.Build(values);
    fixBuilder_.Keep(values.type, fix);
    const bool isValid = fix.type != kFixNone;
    const std::uint32_t nowMs = isValid ? TickCountMs() : 0;

    // An event that is switched off still keeps the clock of the others going.
    clock_.SetNow(fix.utc);
    Turn turn = TakeTurn(IntervalSlot::GpsFix);
    bool hasStatusChanged;
    ComStatusValues status;
    {
        const LibraryLockScope lock;
        hasStatusChanged = comStatus_.NoteFix(isValid, nowMs);
        status = comStatus_.values();
    }
    Ref<GpsFix> record;
    if (turn.isPublished || turn.isRaised) record = spares_.fix.Make(fix, gpsDatum_.load());
    // From here on callbacks run; a datum that they set is for later fixes.
    if (hasStatusChanged) {
        RaiseComStatus(status);
        // Whose receiver may have chosen other events, or none.
        turn.isPublished = noEvents_;
        turn.handler = HandlerOf(ParserEvent::GpsFix);
    }
    if (record) {
        Hand(IntervalSlot::GpsFix, turn, fixes_, spares_.fix, std::move(record), fix.type);
    }
}

void NmeaParser::UpdateMovement(const SentenceValues& values) {
    const Turn turn = TakeTurn(IntervalSlot::Movement);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(IntervalSlot::Movement, turn, movements_, spares_.movement,
         spares_.movement.Make(values.movement));
}

void NmeaParser::UpdateQuality(const NmeaSentence& sentence) {
    const Turn turn = TakeTurn(IntervalSlot::Quality);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(IntervalSlot::Quality, turn, qualities_, spares_.quality,
         spares_.quality.Make(DecodeQuality(sentence)));
}

void NmeaParser::UpdateSatellites(const NmeaSentence& sentence) {
    constexpr IntervalSlot kSlot = IntervalSlot::Satellites;
    if (!IsWanted(kSlot)) return;
    if (!noEvents_ && Wishes().intervals.Get(kSlot) == EventIntervals::kOff) return;
    if (!accumulator_.AddGsv(sentence) && !accumulator_.AddGsa(sentence, wasGsa_)) return;
    const Turn turn = TakeTurn(kSlot);
    if (!turn.isPublished && !turn.isRaised) return;
    Hand(kSlot, turn, satellites_, spares_.satellites,
         spares_.satellites.Make(accumulator_.picture()));
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

void NmeaParser::HandRecord(IntervalSlot slot, const Turn& turn, SnapshotRecordSlot& snapshots,
                            SpareRecord& spare, Ref<Record> object, std::int32_t level) {
    const auto& [event, code] = DerivedEventOf(slot);
    if (turn.isPublished) {
        object = snapshots.Publish(std::move(object), level);
    } else if (isQueued_) {
        queue_->Put(code, std::move(object));
        return;
    } else if (turn.handler) {
        Call(turn.handler, event, *object);
    }
    spare.GiveBack(std::move(object));
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
