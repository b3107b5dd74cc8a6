// NmeaParser: the engine behind the one object that a client creates to receive GPS data.
//
// It keeps the settings, cuts the text handed to Parse into sentences, and dispatches each
// sentence: the receiver's state is updated, and the client's event sink is called or a waiting
// query woken.
//
// Thread safety: settings, Parse and queries belong to the client's thread. Sentences are
// dispatched by one thread at a time: the client's, or the one that reads the port. The event sink,
// the intervals and the com status are guarded by the library lock, which is never held while a
// callback runs, so a callback may do anything to the parser, Parse included. The dispatching
// thread has its own copy of sink and intervals, made anew when a version number says that they
// changed.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "base/library_lock.h"
#include "base/record.h"
#include "nmea/satellite_accumulator.h"
#include "nmea/sentence_assembler.h"
#include "parser/com_status_tracker.h"
#include "parser/event_clock.h"
#include "parser/event_queue.h"
#include "parser/event_sink.h"
#include "parser/snapshot_slot.h"
#include "parser/work_item.h"
#include "results/com_status.h"
#include "results/fix_builder.h"
#include "results/gps_fix.h"
#include "results/movement.h"
#include "results/quality.h"
#include "results/satellites.h"

namespace kavrel {

class NmeaParser final : public Record {
  public:
    // Numbers of built-in and custom datums.
    static constexpr std::int16_t kFirstDatum = 1;
    static constexpr std::int16_t kLastDatum = 28;

    // Com ports that are no port numbers.
    static constexpr std::int32_t kSearchForPort = 0;
    static constexpr std::int32_t kSharedReceiverOnly = -1;

    // A baud rate that is to be found out.
    static constexpr std::int32_t kDetectBaudRate = 0;

    // Every operation clears the error slot first; its errors are named here.

    // Feeds text. Each sentence that it completes is dispatched before Parse returns; an unfinished
    // one waits for more. Give at most SentenceAssembler::kRingSize characters at a time: of more,
    // only the last are kept. Errors: 10006 "Port must not be enabled!".
    void Parse(std::string_view text);

    // Only Generic is raised for every sentence, and nothing is decoded.
    void SetAllEventsGeneric(bool isOn);

    // The datum of positions in later fixes. Errors: 10003 "Unknown datum!" outside 1..28.
    void SetGpsDatum(std::int16_t datum);

    // Errors: 10006 "Port must not be enabled!".
    void SetComPort(std::int32_t comPort);

    // Errors: 10006 "Autodetect mode not allowed" while the port is enabled and it, or its rate, is
    // being detected.
    void SetBaudRate(std::int32_t baudRate);

    // No events are raised; the client asks for data instead. Errors: 10006 "Port must not be
    // enabled!".
    void SetNoEvents(bool isOn);

    // Sentences without a checksum are dropped, from Parse and from the port.
    void SetChecksumMandatory(bool isOn);

    // How often a derived event (type 5 fix, 6 satellites, 7 movement, 8 quality) is raised at the
    // most, by the receiver's clock; negative: never. Errors: 10003 "Unknown event type!".
    void SetEventInterval(std::int32_t intervalMs, std::int32_t eventType);

    // From now on events go there.
    void SetEventSink(const EventSink& sink);

    // Acts on a work item, on the calling thread.
    void Dispatch(WorkItem item);

    // Sentences of the port are dispatched by the thread that reads them, even with events on.
    void SetDirectDelivery(bool isOn);

    // Whether what the port delivers is dispatched at once, not on the client's thread.
    bool DispatchesAtOnce() const { return noEvents_ || directDelivery_; }

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

    // Another stream of sentences begins: what was kept of the last one completes no fix of it.
    void StartAfresh();

    // To be called while data arrive: a valid fix that is too old counts no longer. True when the
    // client is to be told, by a work item.
    bool ExpireValidFix();

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

    // False, with the error set, while the port is enabled.
    bool RequirePortDisabled();

    // False, with the error set, while there are events.
    bool RequireNoEvents();

    void DispatchSentence(Ref<NmeaSentence> reference);
    void DispatchComStatus(Ref<Record> status);
    void RaiseGeneric(NmeaSentence& sentence);

    // Each decodes a sentence again, since a client may have changed it meanwhile.
    void UpdateFix(const NmeaSentence& sentence);
    void UpdateMovement(const NmeaSentence& sentence);
    void UpdateQuality(const NmeaSentence& sentence);
    void UpdateSatellites(const NmeaSentence& sentence);

    // Raises GGA, GLL or RMC. The object takes the sentence over and is returned; null when nobody
    // listens.
    template <typename T>
    Ref<Record> RaiseDecoded(ParserEvent event, Ref<NmeaSentence>& sentence);

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

    template <typename T>
    void Hand(IntervalSlot slot, const Turn& turn, SnapshotSlot<T>& snapshots, Ref<T> object,
              std::int32_t level = 0);

    SentenceAssembler parseAssembler_;
    SentenceAssembler portAssembler_;
    bool isPortEnabled_ = false;
    bool noEvents_ = false;
    std::int32_t comPort_ = kSearchForPort;
    std::int32_t baudRate_ = 4800;

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

    SnapshotSlot<GpsFix> fixes_;
    SnapshotSlot<Satellites> satellites_;
    SnapshotSlot<Movement> movements_;
    SnapshotSlot<Quality> qualities_;
};

}  // namespace kavrel
