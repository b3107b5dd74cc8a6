// What does not go into a dialogue: a serial port's events, its blocks, and much of everything at
// once.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <thread>

#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

TEST_F(PortTest, EventsTellWhoseAndWhichTheyAre) {
    std::uint32_t index = 0;
    for (const Ref<Event>& event : {port_->DataReceivedEvent(), port_->WriteDoneEvent(),
                                    port_->ErrorEvent(), port_->LineChangedEvent()}) {
        EXPECT_EQ(event->tag(), (EventTag{port_->serialNumber(), ++index}));
    }
}

TEST_F(PortTest, ReceivesInOrderInBlocksOfAtMost256) {
    std::string sent;
    for (int i = 0; i < 5000; ++i)
        sent += static_cast<char>(i % 251);
    port_->Open();
    device_.Feed(sent);
    EXPECT_EQ(Receive(sent.size()), sent);
}

// Closing makes reads, writes and line waits fail, of which nobody is told.
TEST_F(PortTest, ClosingSignalsNoErrorOfItsOwn) {
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

// Bytes pour in, a consumer takes them, a client writes and changes settings, and another thread
// opens and closes.
TEST_F(PortTest, ClosesWhileEverythingIsUsed) {
    std::atomic<bool> isOver{false};
    const auto untilOver = [&isOver](auto step) {
        return std::thread([&isOver, step] {
            for (std::uint32_t i = 0; !isOver; ++i)
                step(i);
        });
    };
    std::array<std::thread, 3> threads = {
        untilOver([this](std::uint32_t) { device_.Feed(std::string(100, 'x')); }),
        untilOver([this](std::uint32_t) {
            (void)port_->TakeReceived();
            (void)port_->TakeWriteDone();
            (void)port_->TakeLineEvent();
            (void)Failure();
        }),
        untilOver([this](std::uint32_t i) {
            port_->SetBaudRate(4800 + i);
            port_->Write(BlockOf("x"));
            (void)port_->ReadDsr();
            device_.SetLines(i & 0xF0);
            device_.FailCall(CommCall::Write, 5, 22);
            (void)port_->BaudRate();
            (void)port_->IsOpen();
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
}

TEST_F(PortTest, LastReleaseCloses) {
    port_->Open();
    device_.Feed("unread");
    const Ref<Event> received = port_->DataReceivedEvent();
    EXPECT_TRUE(received->Wait(kPatienceMs));
    port_.Reset();
    EXPECT_FALSE(received->Wait(0));
}

}  // namespace
}  // namespace kavrel
