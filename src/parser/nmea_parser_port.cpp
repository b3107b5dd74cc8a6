// The parser's port: its settings, and what the reader thread brings from it.
#include <utility>

#include "parser/nmea_parser.h"
#include "platform/clock.h"

namespace kavrel {

void NmeaParser::SetComPort(std::int32_t comPort) {
    if (RequirePortDisabled()) portChoice_.comPort = comPort;
}

void NmeaParser::SetBaudRate(std::int32_t baudRate) {
    error().Clear();
    if (isPortEnabled_ && portChoice_.IsDetecting()) {
        error().Set(kErrorWrongState, Message::AutodetectNotAllowed);
        return;
    }
    portChoice_.baudRate = baudRate;
    if (isPortEnabled_) portReader_.SetBaudRate(static_cast<std::uint32_t>(baudRate), error());
}

void NmeaParser::SetPortEnabled(bool isOn) {
    error().Clear();
    if (isOn == isPortEnabled_) return;
    if (isOn) {
        StartAfresh();
        isPortEnabled_ = portReader_.Enable(portChoice_, error());
    } else {
        portReader_.Disable();
        isPortEnabled_ = false;
    }
}

void NmeaParser::WriteData(Ref<ByteBlock> bytes) {
    error().Clear();
    if (!isPortEnabled_) {
        error().Set(kErrorWrongState, Message::PortMustBeEnabled);
    } else if (portChoice_.IsDetecting()) {
        error().Set(kErrorWrongState, Message::AutodetectNotAllowed);
    } else if (bytes) {
        portReader_.Write(std::move(bytes), error());
    }
}

void NmeaParser::ShutDown() {
    portReader_.Stop();
    isPortEnabled_ = false;
    formSync_.reset();
}

void NmeaParser::StartAfresh() {
    fixBuilder_.Clear();
    accumulator_.Clear();
    const LibraryLockScope lock;
    comStatus_.ForgetNmea();
}

void NmeaParser::Deliver(WorkItem item) {
    if (DispatchesAtOnce()) {
        Dispatch(std::move(item));
    } else {
        HandOverToClient(static_cast<std::uint32_t>(item.kind), std::move(item.object));
    }
}

void NmeaParser::HandOverToClient(std::uint32_t selector, Ref<Record> argument) {
    formSync_->Post(Ref<NmeaParser>::Share(this), selector, std::move(argument));
}

void NmeaParser::OnHandOver(std::uint32_t selector, Ref<Record> argument) {
    // What was on its way before the client chose to ask instead of being told: the reader thread
    // dispatches now.
    if (noEvents_ && isPortEnabled_) return;
    if (selector == SourceEndedSelector) {
        DispatchComStatus(nullptr);
    } else {
        Dispatch({static_cast<WorkKind>(selector), std::move(argument)});
    }
}

void NmeaParser::OnSentence(Ref<NmeaSentence> sentence) {
    Deliver({WorkKind::Sentence, std::move(sentence)});
}

// The client is told how things are when it hears of it, which may be later than now.
void NmeaParser::DeliverComStatus() {
    Deliver({WorkKind::ComStatus, nullptr});
}

// A valid fix that is too old counts no longer, but only new data tell how old it is.
void NmeaParser::OnDataRead() {
    const std::uint32_t nowMs = TickCountMs();
    {
        const LibraryLockScope lock;
        if (!comStatus_.ExpireFix(nowMs)) return;
    }
    DeliverComStatus();
}

void NmeaParser::OnSettingsChanged(const PortChoice& current) {
    {
        const LibraryLockScope lock;
        comStatus_.NotePort(current.comPort, current.baudRate);
    }
    if (!noEvents_) DeliverComStatus();
}

void NmeaParser::OnValidNmea(const PortChoice& current) {
    {
        const LibraryLockScope lock;
        comStatus_.NoteNmea();
    }
    OnSettingsChanged(current);
}

void NmeaParser::OnSourceEnded() {
    {
        const LibraryLockScope lock;
        comStatus_.ForgetSource();
    }
    if (DispatchesAtOnce()) {
        DispatchComStatus(nullptr);
    } else {
        HandOverToClient(SourceEndedSelector, nullptr);
    }
}

}  // namespace kavrel
