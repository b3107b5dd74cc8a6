// The search for a receiver, and the shared receiver as a source: the dialogues of
// tests/data/parser/reader_dialogues.txt, and what is too quick or too long for them.
#include "parser/port_reader.h"

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/locked_queue.h"
#include "platform/host/scripted_machine.h"
#include "unit/comm_call.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::StartsWith;

// Long enough for a busy machine to hear a receiver that is there.
constexpr std::uint32_t kTryMs = 100;

// Writes down what the reader tells, and lets a test wait for it.
class ReaderLog final : public PortReader::Listener {
  public:
    void OnSentence(Ref<NmeaSentence> sentence) override {
        if (onSentence) onSentence();
        Add(std::string(sentence->Text()));
    }
    void OnDataRead() override {}
    void OnSettingsChanged(const PortChoice& current) override {
        if (onTry) onTry(current);
        Add("try:" + Describe(current));
    }
    void OnValidNmea(const PortChoice& current) override { Add("valid:" + Describe(current)); }
    void OnSourceEnded() override { Add("ended"); }

    // Up to and with that line, and takes what was written down.
    void Await(const std::string& line) {
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        for (;; std::this_thread::sleep_for(std::chrono::milliseconds(1))) {
            while (const std::optional<std::string> next = lines_.Pop()) {
                taken.push_back(*next);
                if (*next == line) return;
            }
            ASSERT_LT(std::chrono::steady_clock::now(), giveUp) << line;
        }
    }

    void Clear() {
        lines_.Clear();
        taken.clear();
    }

    // On the reader's thread.
    std::function<void(const PortChoice&)> onTry;
    std::function<void()> onSentence;
    std::vector<std::string> taken;

  private:
    static std::string Describe(const PortChoice& current) {
        return std::to_string(current.comPort) + "@" + std::to_string(current.baudRate);
    }
    void Add(const std::string& line) { lines_.Push(line); }

    LockedQueue<std::string> lines_;
};

class PortReaderTest : public testing::Test {
  protected:
    // The port is listed; it can be opened once it is asked for.
    void List(std::int32_t port) {
        const std::u16string name = Wide("COM" + std::to_string(port) + ":");
        machine_.memoryRegistry().AddText(u"Drivers\\Active\\" + name, u"Name", name);
    }
    std::string Enable(const PortChoice& choice) {
        log_.Clear();
        ErrorSlot error;
        const bool isEnabled = reader_.Enable(choice, error);
        EXPECT_NE(isEnabled, error.IsSet());
        return ErrorOf(error);
    }

    static constexpr PortChoice kAnything = {kSearchForPort, kDetectBaudRate};

    ScriptedMachine machine_;
    SharedReceiverScript& shared_ = machine_.sharedReceiver();
    ReaderLog log_;
    PortReader reader_{machine_, log_, kTryMs};
};

class PortReaderDialogue : public PortReaderTest, public testing::WithParamInterface<TableGroup> {
  protected:
    PortReaderDialogue() {
        AddReader();
        AddOtherSide();
    }

    Dialogue<PortReader> dialogue_{[this]() -> PortReader& { return reader_; }};

  private:
    void AddReader() {
        dialogue_.Add("Enable", [this](int port, int rate) { return Enable({port, rate}); });
        dialogue_.Add("Disable", [this] { reader_.Disable(); });
        dialogue_.Add("Await", [this](const std::string& line) { log_.Await(line); });
        dialogue_.Add("Taken", [this] { return Joined(log_.taken); });
    }

    void AddOtherSide() {
        dialogue_.Add("List", [this](int port) { List(port); });
        dialogue_.Add("Port", [this](int port) { machine_.Port(port); });
        dialogue_.Add("Connect", [this](int port, int rate, const std::string& sentence) {
            Connect(port, rate, sentence + "\r\n");
        });
        dialogue_.Add("Fail", [this](int port, const std::string& call, std::uint32_t error) {
            machine_.Port(port).FailCall(CommCallOf(call), 1, error);
        });
        dialogue_.Add("TimesOpened",
                      [this](int port) { return machine_.Port(port).CallCount(CommCall::Open); });
        dialogue_.Add("IsOpen", [this](int port) { return machine_.Port(port).isOpen(); });
        dialogue_.Add("SharedDoes", [this](const std::string& call) { ResultOf(call) = {}; });
        dialogue_.Add("SharedFails", [this](const std::string& call, std::uint32_t number,
                                            const std::string& text) {
            ResultOf(call) = {static_cast<std::int32_t>(0x80040000 + number), text};
        });
        dialogue_.Add("SharedCalls", [this] { return Joined(std::exchange(shared_.calls, {})); });
        dialogue_.Add("SharedEnds", [this] { shared_.listener->OnClosed(); });
        dialogue_.Add("IsShared", [this] { return shared_.listener != nullptr; });
    }

    // A receiver at one rate: at any other it is heard as noise. Says enough to fill a read.
    void Connect(std::int32_t port, std::int32_t baudRate, const std::string& line) {
        machine_.Port(port);
        log_.onTry = [this, port, baudRate, line](const PortChoice& current) {
            if (current.comPort != port) return;
            for (int i = 0; i < 20; ++i)
                machine_.Port(port).Feed(current.baudRate == baudRate ? line
                                                                      : "$\xFE,\r\n$~~~,noise\r\n");
        };
    }

    SharedReceiverResult& ResultOf(const std::string& call) {
        if (call == "create") return shared_.create;
        return call == "4" ? shared_.method4 : shared_.method6;
    }
};

TEST_P(PortReaderDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, PortReaderDialogue,
                         testing::ValuesIn(ReadGroups("parser/reader_dialogues.txt")), NameOfGroup);

// One that opens but fails at once is not opened over and over, even when it did not at first.
TEST_F(PortReaderTest, TakesItsTimeWithAPortThatFails) {
    log_.onTry = [this](const PortChoice& current) {
        const bool isLastRate = current.baudRate == 115200;
        if (isLastRate) machine_.Port(2).FailCallsFrom(CommCall::Read, 1, 21);
    };
    machine_.Port(2);
    Enable({2, kDetectBaudRate});
    log_.Await("try:2@115200");
    log_.Await("try:2@4800");
    const auto start = std::chrono::steady_clock::now();
    log_.Await("try:2@4800");
    log_.Await("try:2@4800");
    reader_.Disable();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kTryMs));
}

// However soon a port fails, what was heard before is told before.
TEST_F(PortReaderTest, DeliversWhatWasHeardBeforeAFailure) {
    List(2);
    ScriptedCommDevice& port = machine_.Port(2);
    for (const std::int32_t comPort : {2, kSearchForPort}) {
        const int failingRead = port.CallCount(CommCall::Read) + 2;
        port.FailCall(CommCall::Read, 2, 21);
        log_.onTry = [&, isFirst = true](const PortChoice&) mutable {
            if (!std::exchange(isFirst, false)) return;
            port.Feed(Line("PKVRL,1") + Line("PKVRL,2") + std::string(256, ' '));
            port.WaitForCalls(CommCall::Read, failingRead);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        };
        Enable({comPort, 4800});
        log_.Await("ended");
        EXPECT_THAT(log_.taken, ElementsAre("try:2@4800", "valid:2@4800", Sentence("PKVRL,1"),
                                            Sentence("PKVRL,2"), "ended"));
        reader_.Disable();
    }
}

// What is still in the port's buffer when the rate changes was heard at the old rate.
TEST_F(PortReaderTest, ForgetsWhatWasHeardAtAnotherRate) {
    List(2);
    const std::string line = Line("PKVRL,1");
    const std::size_t half = line.find('*');
    log_.onTry = [&](const PortChoice& current) {
        const bool isFirst = current.baudRate == 4800;
        // Enough to fill a read behind the second half.
        machine_.Port(2).Feed(isFirst ? line.substr(0, half)
                                      : line.substr(half) + std::string(256, ' '));
    };
    machine_.Port(2);
    Enable(kAnything);
    log_.Await("try:2@115200");
    EXPECT_THAT(log_.taken, Each(StartsWith("try")));
    reader_.Disable();
}

// A search that finds nothing goes on until it is told to stop, whatever there is to try.
TEST_F(PortReaderTest, SearchesUntilDisabled) {
    using std::chrono::steady_clock;
    const steady_clock::time_point start = steady_clock::now();
    Enable(kAnything);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    reader_.Disable();
    const std::size_t tries = (steady_clock::now() - start) / std::chrono::milliseconds(kTryMs);
    EXPECT_LE(machine_.memoryRegistry().CallCount(), 3 + tries) << "at its usual pace";
    List(2);
    machine_.Port(2);
    for (int i = 0; i < 5; ++i) {
        Enable(kAnything);
        log_.Await("try:2@4800");
        reader_.Disable();
    }
    Enable(kAnything);
    log_.Await("try:2@4800");
    log_.Await("try:2@4800");
    reader_.Stop();
    EXPECT_FALSE(machine_.Port(2).isOpen());
}

// An empty text, and more at once than the ring holds.
TEST_F(PortReaderTest, ReadsFromTheSharedReceiver) {
    shared_.create = {};
    List(2);
    for (const std::int32_t comPort : {kSharedReceiverOnly, kSearchForPort}) {
        shared_.calls.clear();
        std::string text;
        for (int i = 0; i < 100; ++i)
            text += Line("PKVRL," + std::to_string(i));
        log_.onTry = [&](const PortChoice&) {
            shared_.listener->OnText("");
            shared_.listener->OnText(text);
        };
        Enable({comPort, 4800});
        log_.Await(Sentence("PKVRL,99"));
        EXPECT_THAT(shared_.calls, ElementsAre("create", "connect", "6(1)", "4()"));
        EXPECT_EQ(log_.taken.size(), 102U);
        EXPECT_EQ(log_.taken[1], "valid:-1@0");
        reader_.Disable();
        EXPECT_EQ(shared_.listener, nullptr);
    }
}

TEST_F(PortReaderTest, IsDisabledThoughSentencesNeverEnd) {
    shared_.create = {};
    Enable({kSharedReceiverOnly, 4800});
    log_.onSentence = [this] { shared_.listener->OnText(Line("PKVRL,1")); };
    shared_.listener->OnText(Line("PKVRL,0"));
    log_.Await(Sentence("PKVRL,1"));
    reader_.Disable();
    EXPECT_EQ(shared_.listener, nullptr);
}

}  // namespace
}  // namespace kavrel
