// PortSource: where sentences come from while the port is enabled. A serial port, the shared
// receiver, or whichever port a receiver is found on.
//
// Thread safety: OpenFixedPort, SetBaudRate and Write are for the client's thread, the first while
// the reader thread is idle, the others while it reads from a fixed port. Everything else belongs
// to the reader thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "base/byte_block.h"
#include "nmea/sentence_assembler.h"
#include "parser/port_choice.h"
#include "parser/search_plan.h"
#include "platform/event.h"
#include "platform/machine.h"
#include "serial/serial_port.h"
#include "serial/shared_receiver_source.h"

namespace kavrel {

class PortSource {
  public:
    // How long a port is listened to at one rate; tests have no such patience.
    static constexpr std::uint32_t kTryMs = 2000;

    // REQUIRES: `machine` outlives the source.
    explicit PortSource(Machine& machine, std::uint32_t tryMs = kTryMs)
        : machine_(machine), tryMs_(tryMs) {}

    // False when memory was short at its making: then it must not be used.
    bool IsComplete() const;

    void SetChecksumMandatory(bool isMandatory) { assembler_.SetChecksumMandatory(isMandatory); }

    // Opens the port of a fixed choice. False, with the port's error, when that fails.
    bool OpenFixedPort(const PortChoice& choice, ErrorSlot& error);

    // Of the open fixed port, if there is one; with the port's error.
    void SetBaudRate(std::uint32_t baudRate, ErrorSlot& error);
    void Write(Ref<ByteBlock> bytes, ErrorSlot& error);

    // Opens what is not open yet. False, with the error, when the shared receiver is wanted alone
    // and fails. Without a receiver in sight, the search begins.
    bool Begin(const PortChoice& choice, ErrorSlot& error);
    void End();

    // What a source has to say, in the order in which it is to be heard.
    enum Signal : std::size_t { SettingsChanged, ValidNmeaSeen, Failed, DataReady, SignalCount };

    // To wait for, up to WaitLimitMs; whoever waits resets what was signalled.
    std::array<Event*, SignalCount> Events() const;

    // Until then, or kWaitForever; afterwards OnTimeOut is due.
    std::uint32_t WaitLimitMs() const;

    // The search goes on.
    void OnTimeOut();

    // What is read from has failed or ended. True when sentences had come from there; then the
    // client is to be told.
    bool OnFailed();

    // The next complete sentence of what has been received, or null. Before the first of a source
    // it is null once, with ValidNmeaSeen and DataReady signalled: that one is to be heard first.
    Ref<NmeaSentence> TakeSentence();

    // The port that is open and its rate; kSharedReceiverOnly and 0 for the shared receiver.
    PortChoice Current() const;

  private:
    Ref<SerialPort> OpenPort(const PortChoice& choice, ErrorSlot& error);
    bool StartSharedReceiver(ErrorSlot& error);
    void StartSearch();
    void Try(const PortChoice& candidate);
    void ListenUntilIn(std::uint32_t ms);
    void Forget();
    Ref<NmeaSentence> NextSentence();
    bool IsProof(NmeaSentence& sentence) const;
    std::string_view TakePiece();

    Machine& machine_;
    const std::uint32_t tryMs_;
    SentenceAssembler assembler_;
    PortChoice choice_;
    Ref<SerialPort> port_;
    Ref<SharedReceiverSource> shared_;

    // Sentences have come from what is open; the first of them, until it is taken.
    bool isValidNmeaSeen_ = false;
    Ref<NmeaSentence> first_;

    // The search, where there is one: it goes on until a sentence comes and after a failure.
    std::optional<SearchPlan> plan_;
    std::optional<PortChoice> next_;
    bool hasListened_ = false;  // in this round, to a port that did not fail
    std::uint32_t listensSinceMs_ = 0;
    std::uint32_t listensForMs_ = 0;

    // What was taken from the source and not yet given to the assembler.
    Ref<ByteBlock> block_;
    std::size_t usedOfBlock_ = 0;

    Ref<Event> settingsChanged_ = TryMakeRef<Event>();
    Ref<Event> validNmeaSeen_ = TryMakeRef<Event>();
    Ref<Event> dataReady_ = TryMakeRef<Event>();  // of port or shared receiver, while there is one
    Ref<Event> failed_ = TryMakeRef<Event>();
};

}  // namespace kavrel
