#include "parser/port_source.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/clock.h"
#include "serial/port_list.h"

namespace kavrel {
namespace {

// The assembler's ring loses what it is given at once beyond its size.
constexpr std::size_t kPieceSize = 256;
static_assert(kPieceSize <= SentenceAssembler::kRingSize);

std::vector<std::int32_t> PortsToSearch(Machine& machine, std::int32_t comPort) {
    if (comPort != kSearchForPort) return {comPort};
    std::vector<std::int32_t> ports;
    for (const ListedPort& item : EnumeratePorts(machine.registry(), false)) {
        if (item.number > 0) ports.push_back(item.number);
    }
    return ports;
}

}  // namespace

bool PortSource::IsComplete() const {
    return std::ranges::all_of(Events(),
                               [](Event* event) { return event != nullptr && event->IsUsable(); });
}

Ref<SerialPort> PortSource::OpenPort(const PortChoice& choice, ErrorSlot& error) {
    auto port = MakeRef<SerialPort>(machine_.MakeCommDevice(), machine_.registry());
    port->SetPort(choice.comPort);
    port->SetBaudRate(static_cast<std::uint32_t>(choice.baudRate));
    port->SetReportWrites(false);
    port->SetWatchLines(false);
    port->SetTimeoutMode(TimeoutMode::Fill);
    port->Open();
    error.CopyFrom(&port->error());
    if (error.IsSet()) return nullptr;
    dataReady_ = port->DataReceivedEvent();
    failed_ = port->ErrorEvent();
    settingsChanged_->Signal();
    return port;
}

bool PortSource::OpenFixedPort(const PortChoice& choice, ErrorSlot& error) {
    Forget();
    port_ = OpenPort(choice, error);
    return static_cast<bool>(port_);
}

void PortSource::SetBaudRate(std::uint32_t baudRate, ErrorSlot& error) {
    if (!port_) return;
    port_->SetBaudRate(baudRate);
    error.CopyFrom(&port_->error());
    settingsChanged_->Signal();
}

void PortSource::Write(Ref<ByteBlock> bytes, ErrorSlot& error) {
    if (!port_) return;
    port_->Write(std::move(bytes));
    error.CopyFrom(&port_->error());
}

bool PortSource::Begin(const PortChoice& choice, ErrorSlot& error) {
    error.Clear();
    choice_ = choice;
    if (choice.IsFixedPort()) return true;
    if (choice.comPort == kSharedReceiverOnly) return StartSharedReceiver(error);

    // While a receiver is searched for, one that is not shared is no failure.
    ErrorSlot ignored;
    if (choice.comPort == kSearchForPort && StartSharedReceiver(ignored)) return true;
    StartSearch();
    return true;
}

void PortSource::End() {
    port_.Reset();
    shared_.Reset();
    plan_.reset();
    Forget();
}

// What is opened next has nothing to do with what was open before.
void PortSource::Forget() {
    assembler_.Clear();
    block_.Reset();
    usedOfBlock_ = 0;
    isValidNmeaSeen_ = false;
    first_.Reset();
    settingsChanged_->Reset();
    validNmeaSeen_->Reset();
    dataReady_ = MakeRef<Event>();
    failed_ = MakeRef<Event>();
}

bool PortSource::StartSharedReceiver(ErrorSlot& error) {
    Forget();
    auto shared = MakeRef<SharedReceiverSource>(machine_.MakeSharedReceiver());
    if (!shared->Start() || !shared->CallMethod6(1) || !shared->CallMethod4()) {
        error.CopyFrom(&shared->error());
        return false;
    }
    dataReady_ = shared->DataReceivedEvent();
    failed_ = shared->SourceClosedEvent();
    shared_ = std::move(shared);
    settingsChanged_->Signal();
    return true;
}

void PortSource::StartSearch() {
    port_.Reset();
    shared_.Reset();
    Forget();
    plan_.emplace(PortsToSearch(machine_, choice_.comPort), choice_.baudRate);
    next_.reset();
    hasListened_ = false;
    ListenUntilIn(0);
}

void PortSource::ListenUntilIn(std::uint32_t ms) {
    listensSinceMs_ = TickCountMs();
    listensForMs_ = ms;
}

std::uint32_t PortSource::WaitLimitMs() const {
    if (!plan_.has_value() || isValidNmeaSeen_) return kWaitForever;
    return listensForMs_ - std::min(listensForMs_, TickCountMs() - listensSinceMs_);
}

// One step at a time: between closing a port, which takes a while, and opening another, the reader
// looks whether it is to stop.
void PortSource::OnTimeOut() {
    if (port_ && listensForMs_ != 0) hasListened_ = true;
    if (!next_.has_value()) next_ = plan_->Next();
    if (!next_.has_value()) {
        const bool hasListened = hasListened_;
        StartSearch();
        // Without a port to listen to, not faster than with one.
        if (!hasListened) ListenUntilIn(tryMs_);
        return;
    }
    if (port_ && port_->Port() != next_->comPort) {
        port_.Reset();
        ListenUntilIn(0);
        return;
    }
    Try(*std::exchange(next_, std::nullopt));
}

void PortSource::Try(const PortChoice& candidate) {
    Forget();
    ErrorSlot ignored;
    if (port_) {
        port_->SetBaudRate(static_cast<std::uint32_t>(candidate.baudRate));
        port_->Purge(true, true);
        dataReady_ = port_->DataReceivedEvent();
        failed_ = port_->ErrorEvent();
        settingsChanged_->Signal();
    } else {
        port_ = OpenPort(candidate, ignored);
    }
    if (port_) {
        ListenUntilIn(tryMs_);
    } else {
        plan_->SkipPort();
        ListenUntilIn(0);
    }
}

bool PortSource::OnFailed() {
    if (first_) {
        // Heard just before the failure, and not told yet.
        failed_->Signal();
        return false;
    }
    const bool hasBeenHeard = isValidNmeaSeen_ || !plan_.has_value();
    if (plan_.has_value() && !isValidNmeaSeen_) {
        // A port that fails while it is tried is not worth listening to.
        ListenUntilIn(0);
        plan_->SkipPort();
    } else if (choice_.IsDetecting() && choice_.comPort != kSharedReceiverOnly) {
        StartSearch();
    }
    return hasBeenHeard;
}

std::array<Event*, PortSource::SignalCount> PortSource::Events() const {
    return {settingsChanged_.get(), validNmeaSeen_.get(), failed_.get(), dataReady_.get()};
}

PortChoice PortSource::Current() const {
    if (!port_) return {.comPort = kSharedReceiverOnly, .baudRate = 0};
    return {.comPort = port_->Port(), .baudRate = static_cast<std::int32_t>(port_->BaudRate())};
}

Ref<NmeaSentence> PortSource::TakeSentence() {
    if (first_) return std::move(first_);
    Ref<NmeaSentence> sentence = NextSentence();
    if (isValidNmeaSeen_) return sentence;
    while (sentence && !IsProof(*sentence))
        sentence = NextSentence();
    if (!sentence) return nullptr;
    isValidNmeaSeen_ = true;
    first_ = std::move(sentence);
    validNmeaSeen_->Signal();
    dataReady_->Signal();
    return nullptr;
}

Ref<NmeaSentence> PortSource::NextSentence() {
    while (!assembler_.HasSentence()) {
        const std::string_view piece = TakePiece();
        if (piece.empty()) return nullptr;
        assembler_.Append(piece);
    }
    return assembler_.TakeSentence();
}

// At a wrong rate noise may pass for a sentence, but hardly with a checksum that fits.
bool PortSource::IsProof(NmeaSentence& sentence) const {
    return !plan_.has_value() || sentence.Text().find('*') != std::string_view::npos;
}

std::string_view PortSource::TakePiece() {
    while (!block_ || usedOfBlock_ == block_->bytes().size()) {
        block_ = port_ ? port_->TakeReceived() : shared_ ? shared_->TakeText() : nullptr;
        usedOfBlock_ = 0;
        if (!block_) return {};
    }
    const auto* const bytes = reinterpret_cast<const char*>(block_->bytes().data());
    const std::size_t size = std::min(kPieceSize, block_->bytes().size() - usedOfBlock_);
    return {bytes + std::exchange(usedOfBlock_, usedOfBlock_ + size), size};
}

}  // namespace kavrel
