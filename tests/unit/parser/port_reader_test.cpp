// The search for a receiver, and the shared receiver as a source.
#include "parser/port_reader.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/scripted_machine.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

constexpr std::uint32_t kTryMs = 10;

// Writes down what the reader tells, and lets a test wait for it.
class ReaderLog final : public PortReader::Listener {
  public:
    void OnSentence(Ref<NmeaSentence> sentence) override { Add(std::string(sentence->Text())); }
    void OnDataRead() override {}
    void OnSettingsChanged(const PortChoice& current) override { Add(Describe("try", current)); }
    void OnValidNmea(const PortChoice& current) override { Add(Describe("valid", current)); }
    void OnSourceEnded() override { Add("ended"); }

    bool WaitFor(const std::string& line) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return std::ranges::find(lines_, line) != lines_.end(); });
    }
    std::vector<std::string> Take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

  private:
    static std::string Describe(const std::string& what, const PortChoice& current) {
        return what + " " + std::to_string(current.comPort) + "@" +
               std::to_string(current.baudRate);
    }
    void Add(const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_;
};

// A receiver at one rate: at any other it is heard as noise.
class Receiver {
  public:
    Receiver(ScriptedCommDevice& port, std::uint32_t baudRate)
        : thread_([this, &port, baudRate] {
              while (!isStopped_) {
                  const bool isHeard = port.isOpen() && port.state().BaudRate == baudRate;
                  const std::string line = isHeard ? Line("PKVRL,1") : "$\xFE,\r\n$~~~,noise\r\n";
                  // Enough to fill a read.
                  for (int i = 0; i < 20; ++i)
                      port.Feed(line);
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
              }
          }) {}
    ~Receiver() {
        isStopped_ = true;
        thread_.join();
    }

  private:
    std::atomic<bool> isStopped_{false};
    std::thread thread_;
};

class PortReaderTest : public testing::Test {
  protected:
    void List(std::int32_t number) {
        machine_.memoryRegistry().AddText(u"Drivers\\Active\\" + Wide(number), u"Name",
                                          u"COM" + Wide(number) + u":");
    }
    static std::u16string Wide(std::int32_t number) {
        const std::string digits = std::to_string(number);
        return {digits.begin(), digits.end()};
    }
    void Enable(const PortChoice& choice) {
        ErrorSlot error;
        EXPECT_TRUE(reader_.Enable(choice, error)) << error.text();
    }
    void Share() { machine_.sharedReceiver().create = {}; }

    ScriptedMachine machine_;
    ReaderLog log_;
    SharedReceiverScript& shared_ = machine_.sharedReceiver();
    PortReader reader_{machine_, log_, kTryMs};
};

TEST_F(PortReaderTest, FindsAReceiverAmongPorts) {
    for (const int number : {2, 3, 4, 5})
        List(number);
    machine_.Port(2);
    machine_.Port(4);  // 3 is listed, but cannot be opened
    machine_.Port(5);
    const Receiver receiver(machine_.Port(4), 38400);
    Enable({kSearchForPort, kDetectBaudRate});
    ASSERT_TRUE(log_.WaitFor("valid 4@38400"));
    ASSERT_TRUE(log_.WaitFor(Sentence("PKVRL,1")));
    reader_.Disable();
    EXPECT_FALSE(machine_.Port(4).isOpen());

    std::vector<std::string> tries = log_.Take();
    std::erase_if(tries, [](const std::string& line) { return line.find("try") != 0; });
    EXPECT_EQ(tries, (std::vector<std::string>{"try 2@4800", "try 2@9600", "try 2@38400",
                                               "try 2@19200", "try 2@57600", "try 2@115200",
                                               "try 4@4800", "try 4@9600", "try 4@38400"}));
}

TEST_F(PortReaderTest, KeepsToWhatIsGiven) {
    List(2);
    machine_.Port(2);
    const Receiver receiver(machine_.Port(6), 57600);
    Enable({6, kDetectBaudRate});
    ASSERT_TRUE(log_.WaitFor("valid 6@57600"));
    reader_.Disable();
    log_.Take();
    EXPECT_EQ(machine_.Port(2).CallCount(CommCall::Open), 0);

    List(6);
    Enable({kSearchForPort, 57600});
    ASSERT_TRUE(log_.WaitFor("valid 6@57600"));
    reader_.Disable();
    EXPECT_EQ(machine_.Port(2).CallCount(CommCall::Open), 1);
}

TEST_F(PortReaderTest, StartsOverWhenTheFoundPortFails) {
    List(2);
    const Receiver receiver(machine_.Port(2), 4800);
    Enable({kSearchForPort, kDetectBaudRate});
    ASSERT_TRUE(log_.WaitFor(Sentence("PKVRL,1")));
    log_.Take();
    machine_.Port(2).FailCall(CommCall::Read, 1, 21);
    ASSERT_TRUE(log_.WaitFor("ended"));
    ASSERT_TRUE(log_.WaitFor("valid 2@4800"));
    reader_.Disable();
}

// A search that finds nothing goes on until it is told to stop, whatever there is to try.
TEST_F(PortReaderTest, SearchesUntilDisabled) {
    Enable({kSearchForPort, kDetectBaudRate});
    reader_.Disable();
    List(2);
    machine_.Port(2);
    for (int i = 0; i < 5; ++i) {
        Enable({kSearchForPort, kDetectBaudRate});
        ASSERT_TRUE(log_.WaitFor("try 2@4800"));
        reader_.Disable();
        log_.Take();
    }
    Enable({kSearchForPort, kDetectBaudRate});
    reader_.Stop();
    EXPECT_FALSE(machine_.Port(2).isOpen());
}

TEST_F(PortReaderTest, ReadsFromTheSharedReceiver) {
    Share();
    List(2);
    for (const std::int32_t comPort : {kSharedReceiverOnly, kSearchForPort}) {
        shared_.calls.clear();
        Enable({comPort, 4800});
        ASSERT_TRUE(log_.WaitFor("try -1@0"));
        EXPECT_EQ(shared_.calls, (std::vector<std::string>{"create", "connect", "6(1)", "4()"}));
        // More at once than the ring holds.
        std::string text;
        for (int i = 0; i < 100; ++i)
            text += Line("PKVRL," + std::to_string(i));
        shared_.listener->OnText(text);
        ASSERT_TRUE(log_.WaitFor(Sentence("PKVRL,99")));
        ASSERT_TRUE(log_.WaitFor("valid -1@0"));
        EXPECT_EQ(log_.Take().size(), 102U);
        reader_.Disable();
        EXPECT_EQ(shared_.listener, nullptr);
    }
}

TEST_F(PortReaderTest, SearchesOnceTheSharedReceiverCloses) {
    Share();
    List(2);
    const Receiver receiver(machine_.Port(2), 4800);
    for (const bool isSearch : {false, true}) {
        Enable({isSearch ? kSearchForPort : kSharedReceiverOnly, kDetectBaudRate});
        ASSERT_TRUE(log_.WaitFor("try -1@0"));
        shared_.listener->OnClosed();
        ASSERT_TRUE(log_.WaitFor("ended"));
        if (isSearch) {
            ASSERT_TRUE(log_.WaitFor("valid 2@4800"));
        }
        EXPECT_EQ(machine_.Port(2).CallCount(CommCall::Open), isSearch ? 1 : 0);
        reader_.Disable();
        log_.Take();
    }
}

}  // namespace
}  // namespace kavrel
