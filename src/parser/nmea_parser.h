// NmeaParser: the engine behind the one object that a client creates to receive GPS data.
//
// It keeps the settings, cuts the text handed to Parse into sentences or reads them from the
// enabled port, and dispatches each sentence: the receiver's state is updated, and the client's
// event sink is called or a waiting query woken.
//
// Thread safety: settings, Parse and queries belong to the client's thread. Sentences are
// dispatched by one thread at a time: the client's, or the reader thread while it dispatches at
// once what it reads. The event sink, the intervals and the com status are guarded by the library
// lock, which is never held while a callback runs, so a callback may do anything to the parser,
// Parse included. The dispatching thread has its own copy of sink and intervals, made anew when a
// version number says that they changed.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "base/byte_block.h"
#include "base/library_lock.h"
#include "base/record.h"
#include "nmea/satellite_accumulator.h"
#include "nmea/sentence_assembler.h"
#include "parser/com_status_tracker.h"
#include "parser/event_clock.h"
#include "parser/event_queue.h"
#include "parser/event_sink.h"
#include "parser/form_sync.h"
#include "parser/port_choice.h"
#include "parser/port_reader.h"
#include "parser/result_spares.h"
#include "parser/snapshot_slot.h"
#include "parser/work_item.h"
#include "platform/machine.h"
#include "results/com_status.h"
#include "results/fix_builder.h"
#include "results/gps_fix.h"
#include "results/movement.h"
#include "results/quality.h"
#include "results/satellites.h"
#include "results/sentence_values.h"

namespace kavrel {

class NmeaParser final : public HandOverTarget, private PortReader::Listener {
  public:
    // Numbers of built-in and custom datums.
    static constexpr std::int16_t kFirstDatum = 1;
    static constexpr std::int16_t kLastDatum = 28;

    // On the client's thread, to which events from the port come back. Errors: 10018 "Could not
    // create window"; such a parser raises no events from the port, everything else works.
    // REQUIRES: `machine` outlives the parser.
    explicit NmeaParser(Machine& machine = ThisMachine());

    // False when memory or events were short at its making: then it must not be used.
    bool IsComplete() const { return formSync_ != nullptr && portReader_.IsComplete(); }

    // Every operation clears the error slot first; its errors are named here.

    // Feeds text. Each sentence that it completes is dispatched before Parse returns; an unfinished
    // one waits for more. Give at most SentenceAssembler::kRingSize characters at a time: of more,
    // only the last are kept. Errors: 10006 "Port must not be enabled!".
    void Parse(std::string_view text);

    // Only Generic is raised for every sentence, and nothing is decoded.
    void SetAllEventsGeneric(bool isOn);

    // The datum of positions in later fixes. Errors: 10003 "Unknown datum!" outside 1..28.
    void SetGpsDatum(std::int16_t datum);

    // A port number, kSearchForPort or kSharedReceiverOnly. Errors: 10006 "Port must not be
    // enabled!".
    void SetComPort(std::int32_t comPort);

    // A rate, or kDetectBaudRate. While the port is enabled, it is changed at once. Errors: 10006
    // "Autodetect mode not allowed" while the port is enabled and it, or its rate, is being
    // detected; the port's.
    void SetBaudRate(std::int32_t baudRate);

    // Opens the port, or begins to search for a receiver, and reads; or ends that. What is so
    // already is left alone. Errors: the port's, and it stays disabled.
    // REQUIRES: not called by a callback on the reader thread.
    void SetPortEnabled(bool isOn);

    // Sends bytes to the receiver; null sends nothing, and so does a shared receiver. Errors: 10006
    // "Port must be enabled!", "Autodetect mode not allowed".
    void WriteData(Ref<ByteBlock> bytes);

    // Ends reading, and forgets what is on its way to the client's thread. For the owner, before it
    // drops its reference: what is on its way holds some, too.
    void ShutDown();

    // No events are raised; the client asks for data instead. Errors: 10006 "Port must not be
    // enabled!".
    void SetNoEvents(bool isOn);

    // Sentences without a checksum are dropped, from Parse and from the port.
    void SetChecksumMandatory(bool isOn);

    // How often a derived event (type 5 fix, 6 satellites, 7 movement, 8 quality) is raised at the
    // most, by the receiver's clock; negative: never. Errors: 10003 "Unknown event type!".
    void SetEventInterval(std::int32_t intervalMs, std::int32_t eventType);

    // From now on events go there. The context outlives the parser, or is given to it by
    // KeepContext.
    void SetEventSink(const EventSink& sink);
    void KeepContext(Ref<Record> context) { context_ = std::move(context); }

    // Acts on a work item, on the calling thread.
    void Dispatch(WorkItem item);

    // Sentences of the port are dispatched by the thread that reads them, even with events on.
    // REQUIRES: the port is disabled, and nothing is on its way to the client's thread.
    void SetDirectDelivery(bool isOn);

    // For FormSync.
    void OnHandOver(std::uint32_t selector, Ref<Record> argument) override;

    // From now on Generic, OnComStatus and the derived events are queued instead of called, whether
    // or not they have a callback. GGA, GLL and RMC are called all the same.
    // REQUIRES: switched on before another thread takes or stops.
    void SetQueuedDelivery(bool isOn);

    // Waits for the oldest queued event. Nothing when stopped, or never switched on.
    std::optional<QueuedEvent> TakeQueuedEvent();
    void StopQueue();

    // The latest snapshot when the time is below 1, else the next one within that time; null when
    // there is none. GetGpsFix waits for a fix of at least that type.
    // Errors: 10006 "NoEvents must be set!".
    Ref<GpsFix> GetGpsFix(std::int32_t timeoutMs, std::int32_t fixType);
    Ref<Satellites> GetSatellites(std::int32_t timeoutMs);
    Ref<Movement> GetMovement(std::int32_t timeoutMs);
    Ref<Quality> GetQuality(std::int32_t timeoutMs);

    // The com status as it is now.
    Ref<ComStatus> GetComStatus();

  private:
    // What the client sets while events run.
    struct ClientWishes {
        EventSink sink;
        EventIntervals intervals;
    };

    // What the client wants done about a derived event.
    struct Turn {
        bool isPublished = false;  // no events: it becomes the snapshot for queries
        bool isRaised = false;
        EventHandler handler;
    };

    // What a hand-over asks for: the dispatch of a work item of that kind, or to tell the client
    // that the source has failed or ended.
    enum Selector : std::uint32_t {
        SentenceSelector = static_cast<std::uint32_t>(WorkKind::Sentence),
        ComStatusSelector = static_cast<std::uint32_t>(WorkKind::ComStatus),
        SourceEndedSelector,
    };

    void OnFinalRelease() override { ShutDown(); }

    // What the reader thread tells.
    void OnSentence(Ref<NmeaSentence> sentence) override;
    void OnDataRead() override;
    void OnSettingsChanged(const PortChoice& current) override;
    void OnValidNmea(const PortChoice& current) override;
    void OnSourceEnded() override;

    // Dispatches at once, or on the client's thread.
    void Deliver(WorkItem item);
    void HandOverToClient(std::uint32_t selector, Ref<Record> argument);
    void DeliverComStatus();
    bool DispatchesAtOnce() const { return noEvents_ || directDelivery_; }

    // Another stream of sentences begins: what was kept of the last one completes no fix of it.
    void StartAfresh();

    // False, with the error set, while the port is enabled.
    bool RequirePortDisabled();

    // False, with the error set, while there are events.
    bool RequireNoEvents();

    // For any thread; the error slot is the client's.
    Ref<ComStatus> ComStatusNow();

    // Returns the sentence when it has no more use for it, or null.
    Ref<NmeaSentence> DispatchSentence(Ref<NmeaSentence> sentence);
    void DispatchComStatus(Ref<Record> status);
    void RaiseGeneric(NmeaSentence& sentence);

    void UpdateFix(const SentenceValues& values);
    void UpdateMovement(const SentenceValues& values);
    void UpdateQuality(const NmeaSentence& sentence);
    void UpdateSatellites(const NmeaSentence& sentence);

    // Raises GGA, GLL or RMC. `sentence` is taken over meanwhile.
    template <typename T>
    void RaiseDecoded(ParserEvent event, Ref<NmeaSentence>& sentence, const SentenceValues& values,
                      Spare<T>& spare);
    static void CallDecoded(const EventHandler& handler, ParserEvent event,
                            Ref<NmeaSentence>& sentence, Ref<DecodedSentence> decoded,
                            SpareRecord& spare);

    // The wishes as they are now. For the dispatching thread, which may keep the reference until
    // it calls a client.
    const ClientWishes& Wishes();

    // Whether there is anybody for a derived event.
    bool IsWanted(IntervalSlot slot);
    Turn TakeTurn(IntervalSlot slot);

    EventHandler HandlerOf(ParserEvent event) { return Wishes().sink.HandlerOf(event); }

    // To the queue, or to the handler where there is one.
    void Raise(EventCode code, ParserEvent event, const EventHandler& handler, Ref<Record> object);
    void RaiseComStatus(const ComStatusValues& status);
    static void Call(const EventHandler& handler, ParserEvent event, Record& object);

    // Publishes a result, queues it or calls its handler.
    template <typename T>
    void Hand(IntervalSlot slot, const Turn& turn, SnapshotSlot<T>& snapshots, Spare<T>& spare,
              Ref<T> object, std::int32_t level = 0) {
        HandRecord(slot, turn, snapshots, spare, std::move(object), level);
    }
    void HandRecord(IntervalSlot slot, const Turn& turn, SnapshotRecordSlot& snapshots,
                    SpareRecord& spare, Ref<Record> object, std::int32_t level);

    SentenceAssembler parseAssembler_;
    PortChoice portChoice_;
    bool isPortEnabled_ = false;
    bool noEvents_ = false;
    std::unique_ptr<FormSync> formSync_;  // until ShutDown
    PortReader portReader_;
    Ref<Record> context_;

    // May be set while another thread dispatches.
    std::atomic<bool> directDelivery_{false};
    std::atomic<bool> allEventsGeneric_{false};
    std::atomic<bool> isQueued_{false};
    std::atomic<std::int16_t> gpsDatum_{kFirstDatum};

    ClientWishes wishes_ KAVREL_GUARDED_BY(libraryLock);
    std::atomic<std::uint32_t> wishesVersion_{1};
    ComStatusTracker comStatus_ KAVREL_GUARDED_BY(libraryLock);
    std::unique_ptr<EventQueue> queue_;  // once made, stays

    // Of the dispatching thread.
    ClientWishes currentWishes_;
    std::uint32_t currentVersion_ = 0;
    EventClock clock_;
    FixBuilder fixBuilder_;
    SatelliteAccumulator accumulator_;
    bool wasGsa_ = false;  // the sentence before
    ResultSpares spares_;

    SnapshotSlot<GpsFix> fixes_;
    SnapshotSlot<Satellites> satellites_;
    SnapshotSlot<Movement> movements_;
    SnapshotSlot<Quality> qualities_;
};

}  // namespace kavrel
