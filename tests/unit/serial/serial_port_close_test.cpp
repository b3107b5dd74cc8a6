// Closing a serial port, whatever its worker threads are at.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <thread>

#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

using std::chrono::steady_clock;

// What a read or a write may still take, and time for a busy machine; what must not happen is a
// wait for something that never comes.
constexpr auto kCloseLimit = std::chrono::seconds(10);

class CloseTest : public PortTest {
  protected:
    void CloseInTime() {
        const auto start = steady_clock::now();
        port_->Close();
        EXPECT_LT(steady_clock::now() - start, kCloseLimit);
        EXPECT_EQ(Error(), "");
        EXPECT_EQ(Failure(), "");
        EXPECT_FALSE(port_->IsOpen());
        EXPECT_FALSE(device_.isOpen());
        for (const Ref<Event>& event : {port_->DataReceivedEvent(), port_->WriteDoneEvent(),
                                        port_->ErrorEvent(), port_->LineChangedEvent()})
            EXPECT_FALSE(event->Wait(0));
        EXPECT_FALSE(port_->TakeReceived());
        EXPECT_FALSE(port_->TakeWriteDone());
        EXPECT_FALSE(port_->TakeLineEvent());
    }
};

TEST_F(CloseTest, NeverOpened) {
    port_->Write(BlockOf("never sent"));
    port_->SetBreak(true);
    CloseInTime();
    OpenQuietly();
    port_->Write(BlockOf("sent"));
    EXPECT_EQ(WriteReports(1).size(), 1u);
    EXPECT_EQ(device_.written(), "sent");
}

TEST_F(CloseTest, WhileSilent) {
    // As found, a read waits for ever.
    for (const TimeoutMode mode :
         {TimeoutMode::AsFound, TimeoutMode::FirstByte, TimeoutMode::Fill}) {
        OpenQuietly(mode);
        device_.WaitForCalls(CommCall::Read, 1);
        CloseInTime();
    }
}

TEST_F(CloseTest, WhileWatchingLines) {
    for (const bool isSuccess : {false, true}) {
        if (isSuccess) device_.EndWaitsWithSuccess();
        OpenWatching();
        CloseInTime();
    }
}

TEST_F(CloseTest, WhileWriting) {
    OpenQuietly();
    device_.HoldWrites(true);
    port_->Write(BlockOf("held"));
    device_.WaitForCalls(CommCall::Write, 1);
    port_->Write(BlockOf("queued"));
    CloseInTime();
    device_.HoldWrites(false);
    OpenQuietly();
    EXPECT_EQ(device_.written(), "");
}

TEST_F(CloseTest, AfterAFailure) {
    for (const CommCall call : {CommCall::Read, CommCall::WaitEvent}) {
        device_.FailCall(call, 1, 21);
        port_->Open();
        ASSERT_TRUE(port_->ErrorEvent()->Wait(kPatienceMs));
        CloseInTime();
    }
}

// Closing makes reads, writes and line waits fail, of which nobody is told.
TEST_F(CloseTest, SignalsNoErrorOfItsOwn) {
    const Ref<Event> isOver = MakeRef<Event>();
    std::thread consumer([&] {
        const Ref<Event> failed = port_->ErrorEvent();
        const std::array<Event*, 2> events = {failed.get(), isOver.get()};
        EXPECT_EQ(WaitAny(events, kWaitForever), 1u);
    });
    device_.HoldWrites(true);
    for (int i = 1; i <= 100; ++i) {
        port_->Open();
        port_->Write(BlockOf("held"));
        device_.WaitForCalls(CommCall::Write, i);
        port_->Close();
    }
    isOver->Signal();
    consumer.join();
}

// Everything at once: bytes pour in, a consumer takes them, a client writes and changes settings,
// and another thread closes and opens.
TEST_F(CloseTest, WhileEverythingIsUsed) {
    std::atomic<bool> isOver{false};
    std::array<std::thread, 3> threads = {std::thread([&] {
                                              while (!isOver)
                                                  device_.Feed(std::string(100, 'x'));
                                          }),
                                          std::thread([&] {
                                              while (!isOver) {
                                                  (void)port_->TakeReceived();
                                                  (void)port_->TakeWriteDone();
                                                  (void)port_->TakeLineEvent();
                                                  (void)Failure();
                                              }
                                          }),
                                          std::thread([&] {
                                              for (std::uint32_t i = 0; !isOver; ++i) {
                                                  port_->SetBaudRate(4800 + i);
                                                  port_->Write(BlockOf("x"));
                                                  (void)port_->ReadDsr();
                                                  device_.SetLines(i & 0xF0);
                                                  device_.FailCall(CommCall::Write, 5, 22);
                                                  (void)port_->BaudRate();
                                                  (void)port_->IsOpen();
                                              }
                                          })};
    for (int i = 0; i < 50; ++i) {
        port_->Open();
        EXPECT_TRUE(port_->IsOpen());
        device_.WaitForCalls(CommCall::Read, device_.CallCount(CommCall::Read) + 1);
        port_->Close();
        EXPECT_FALSE(port_->IsOpen());
    }
    isOver = true;
    for (std::thread& thread : threads)
        thread.join();
    CloseInTime();
}

TEST(SerialPort, OpensAndClosesAThousandTimes) {
    const std::int32_t alive = Record::LiveCount();
    {
        auto device = std::make_unique<ScriptedCommDevice>();
        ScriptedCommDevice& script = *device;
        MemoryRegistryStore registry;
        const Ref<SerialPort> port = MakeRef<SerialPort>(std::move(device), registry);
        const std::int32_t closed = Record::LiveCount();
        for (int i = 0; i < 1000; ++i) {
            port->Open();
            ASSERT_TRUE(port->IsOpen());
            if (i % 3 == 0) script.Feed("bytes that nobody takes");
            if (i % 5 == 0) port->Write(BlockOf("sent or not"));
            port->Close();
            ASSERT_EQ(Record::LiveCount(), closed);
        }
    }
    EXPECT_EQ(Record::LiveCount(), alive);
}

TEST(SerialPort, LastReleaseCloses) {
    const std::int32_t alive = Record::LiveCount();
    for (int i = 0; i < 20; ++i) {
        auto device = std::make_unique<ScriptedCommDevice>();
        ScriptedCommDevice& script = *device;
        MemoryRegistryStore registry;
        Ref<SerialPort> port = MakeRef<SerialPort>(std::move(device), registry);
        port->Open();
        script.Feed("unread");
        const Ref<Event> received = port->DataReceivedEvent();
        EXPECT_TRUE(received->Wait(kPatienceMs));
        port.Reset();
        EXPECT_FALSE(received->Wait(0));
    }
    EXPECT_EQ(Record::LiveCount(), alive);
}

}  // namespace
}  // namespace kavrel
