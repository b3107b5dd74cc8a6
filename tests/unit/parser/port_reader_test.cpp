// The search for a receiver, and the shared receiver as a source.
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
        Add("try " + Describe(current));
    }
    void OnValidNmea(const PortChoice& current) override { Add("valid " + Describe(current)); }
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
    void List(char16_t digit) {
        const std::u16string name = std::u16string(u"COM") + digit + u":";
        machine_.memoryRegistry().AddText(u"Drivers\\Active\\" + name, u"Name", name);
    }
    // A receiver at one rate: at any other it is heard as noise. Says enough to fill a read.
    void Connect(std::int32_t port, std::int32_t baudRate) {
        machine_.Port(port);
        log_.onTry = [this, port, baudRate](const PortChoice& current) {
            if (current.comPort != port) return;
            for (int i = 0; i < 20; ++i)
                machine_.Port(port).Feed(current.baudRate == baudRate ? Line("PKVRL,1")
                                                                      : "$\xFE,\r\n$~~~,noise\r\n");
        };
    }
    void Enable(const PortChoice& choice) {
        log_.Clear();
        ErrorSlot error;
        EXPECT_TRUE(reader_.Enable(choice, error)) << error.text();
    }
    int TimesOpened(std::int32_t port) { return machine_.Port(port).CallCount(CommCall::Open); }

    static constexpr PortChoice kAnything = {kSearchForPort, kDetectBaudRate};

    ScriptedMachine machine_;
    SharedReceiverScript& shared_ = machine_.sharedReceiver();
    ReaderLog log_;
    PortReader reader_{machine_, log_, kTryMs};
};

// A port that fails is not tried at its other rates.
TEST_F(PortReaderTest, FindsAReceiverAmongPorts) {
    for (const char16_t port : {u'1', u'2', u'3', u'4', u'5', u'6'})
        List(port);
    machine_.Port(2);  // 1 is listed, but not there
    machine_.Port(3).FailCall(CommCall::Open, 1, 5);
    machine_.Port(4).FailCall(CommCall::Read, 1, 21);
    machine_.Port(6);
    Connect(5, 38400);
    Enable(kAnything);
    log_.Await("valid 5@38400");
    EXPECT_THAT(log_.taken, ElementsAre("try 2@4800", "try 2@9600", "try 2@38400", "try 2@19200",
                                        "try 2@57600", "try 2@115200", "try 4@4800", "try 5@4800",
                                        "try 5@9600", "try 5@38400", "valid 5@38400"));
    log_.Await(Sentence("PKVRL,1"));
    reader_.Disable();
    EXPECT_FALSE(machine_.Port(5).isOpen());
}

// One that opens but fails at once is not opened over and over, even when it did not at first.
TEST_F(PortReaderTest, TakesItsTimeWithAPortThatFails) {
    log_.onTry = [this](const PortChoice& current) {
        const bool isLastRate = current.baudRate == 115200;
        if (isLastRate) machine_.Port(2).FailCallsFrom(CommCall::Read, 1, 21);
    };
    machine_.Port(2);
    Enable({2, kDetectBaudRate});
    log_.Await("try 2@115200");
    log_.Await("try 2@4800");
    const auto start = std::chrono::steady_clock::now();
    log_.Await("try 2@4800");
    log_.Await("try 2@4800");
    reader_.Disable();
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(kTryMs));
}

TEST_F(PortReaderTest, KeepsToWhatIsGiven) {
    List(u'2');
    machine_.Port(2);
    Connect(6, 57600);
    Enable({6, kDetectBaudRate});
    log_.Await("valid 6@57600");
    reader_.Disable();
    EXPECT_EQ(TimesOpened(2), 0);

    List(u'6');
    Enable({kSearchForPort, 57600});
    log_.Await("valid 6@57600");
    EXPECT_THAT(log_.taken, ElementsAre("try 2@57600", "try 6@57600", "valid 6@57600"));
    reader_.Disable();

    // Only a search wants a checksum.
    log_.onTry = [this](const PortChoice&) { machine_.Port(6).Feed("$PKVRL,1\r\n"); };
    Enable({6, 57600});
    log_.Await("valid 6@57600");
    reader_.Disable();
}

TEST_F(PortReaderTest, StartsOverWhenTheFoundPortFails) {
    List(u'2');
    Connect(2, 4800);
    Enable(kAnything);
    log_.Await(Sentence("PKVRL,1"));
    machine_.Port(2).FailCall(CommCall::Read, 1, 21);
    log_.Await("ended");
    log_.Await("valid 2@4800");
    reader_.Disable();
}

// However soon a port fails, what was heard before is told before.
TEST_F(PortReaderTest, DeliversWhatWasHeardBeforeAFailure) {
    List(u'2');
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
        EXPECT_THAT(log_.taken, ElementsAre("try 2@4800", "valid 2@4800", Sentence("PKVRL,1"),
                                            Sentence("PKVRL,2"), "ended"));
        reader_.Disable();
    }
}

// What is still in the port's buffer when the rate changes was heard at the old rate.
TEST_F(PortReaderTest, ForgetsWhatWasHeardAtAnotherRate) {
    List(u'2');
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
    log_.Await("try 2@115200");
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
    List(u'2');
    machine_.Port(2);
    for (int i = 0; i < 5; ++i) {
        Enable(kAnything);
        log_.Await("try 2@4800");
        reader_.Disable();
    }
    Enable(kAnything);
    log_.Await("try 2@4800");
    log_.Await("try 2@4800");
    reader_.Stop();
    EXPECT_FALSE(machine_.Port(2).isOpen());
}

TEST_F(PortReaderTest, ReadsFromTheSharedReceiver) {
    shared_.create = {};
    List(u'2');
    for (const std::int32_t comPort : {kSharedReceiverOnly, kSearchForPort}) {
        shared_.calls.clear();
        // An empty text, and more at once than the ring holds.
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
        EXPECT_EQ(log_.taken[1], "valid -1@0");
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

// Alone it must work; in a search its failure is nobody's business.
TEST_F(PortReaderTest, TellsOfASharedReceiverThatFailsWhenItIsWantedAlone) {
    const SharedReceiverResult kDone, kBusy = {static_cast<std::int32_t>(0x80041234), "Busy"},
                                      kNoNumber = {static_cast<std::int32_t>(0x80040000), ""};
    const struct {
        SharedReceiverResult create, method6, method4;
        std::string error;
    } kCases[] = {
        {kBusy, kDone, kDone,
         "4660 Ravelin not installed! Cannot create object RavelinApi::Simple"},
        {kDone, kBusy, kDone, "4660 Busy"},
        {kDone, kDone, kBusy, "4660 Busy"},
        // A number of 0 would say that nothing failed.
        {kNoNumber, kDone, kDone,
         "10007 Ravelin not installed! Cannot create object RavelinApi::Simple"},
        {kDone, kNoNumber, kDone, "10007 Unknown Error"},
    };
    for (const auto& [create, method6, method4, expected] : kCases) {
        shared_.create = create;
        shared_.method6 = method6;
        shared_.method4 = method4;
        ErrorSlot error;
        EXPECT_FALSE(reader_.Enable({kSharedReceiverOnly, 4800}, error)) << expected;
        EXPECT_EQ(std::to_string(error.code()) + " " + std::string(error.text()), expected);
        EXPECT_EQ(shared_.calls.back(), "release");
        Enable(kAnything);
        reader_.Disable();
    }
}

TEST_F(PortReaderTest, SearchesOnceTheSharedReceiverCloses) {
    shared_.create = {};
    List(u'2');
    Connect(2, 4800);
    for (const bool isSearch : {false, true}) {
        Enable({isSearch ? kSearchForPort : kSharedReceiverOnly, kDetectBaudRate});
        log_.Await("try -1@0");
        shared_.listener->OnClosed();
        log_.Await("ended");
        if (isSearch) {
            log_.Await("valid 2@4800");
            EXPECT_EQ(shared_.listener, nullptr);
        }
        EXPECT_EQ(TimesOpened(2), isSearch ? 1 : 0);
        reader_.Disable();
    }
}

}  // namespace
}  // namespace kavrel
