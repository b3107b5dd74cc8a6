// What a serial port's worker threads read, write and report.
#include <gmock/gmock.h>

#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

using testing::ElementsAre;

TEST_F(PortTest, ReceivesInOrderInBlocksOfAtMost256) {
    std::string sent;
    for (int i = 0; i < 5000; ++i)
        sent += static_cast<char>(i % 251);
    OpenQuietly();
    device_.Feed(std::string_view(sent).substr(0, 700));
    Await(port_->DataReceivedEvent());
    device_.Feed(std::string_view(sent).substr(700));

    std::string received;
    while (received.size() < sent.size()) {
        const Ref<ByteBlock> block = port_->TakeReceived();
        if (!block) {
            ASSERT_TRUE(port_->DataReceivedEvent()->Wait(kPatienceMs));
            port_->DataReceivedEvent()->Reset();
            continue;
        }
        EXPECT_FALSE(block->bytes().empty());
        EXPECT_LE(block->bytes().size(), 256u);
        received += TextOf(block);
    }
    EXPECT_EQ(received, sent);
    EXPECT_EQ(TextOf(port_->TakeReceived()), "(none)");
}

TEST_F(PortTest, SilenceIsPolledAndNotReported) {
    OpenQuietly(TimeoutMode::Fill);
    const int reads = device_.CallCount(CommCall::Read);
    device_.WaitForCalls(CommCall::Read, reads + 3);
    EXPECT_FALSE(port_->DataReceivedEvent()->Wait(0));
    EXPECT_FALSE(port_->ErrorEvent()->Wait(0));
    EXPECT_EQ(TextOf(port_->TakeReceived()), "(none)");
    EXPECT_EQ(Failure(), "");
    device_.Feed("late");
    EXPECT_EQ(Receive(4), "late");
}

TEST_F(PortTest, ReportsAFailingReadOnceAndReadsNoMore) {
    const struct {
        bool isOverstated;
        const char* expected;
    } kCases[] = {{false, "21 Error reading data from serial port."},
                  {true, "14 Error reading data from serial port."}};
    for (const auto& [isOverstated, expected] : kCases) {
        OpenQuietly();
        if (isOverstated) {
            device_.OverstateNextRead(257);
        } else {
            device_.FailCall(CommCall::Read, 2, 21);
            device_.Feed("before");
            EXPECT_EQ(Receive(6), "before");
        }
        ASSERT_TRUE(port_->ErrorEvent()->Wait(kPatienceMs));
        EXPECT_EQ(Failure(), expected);
        EXPECT_EQ(Failure(), expected);  // kept

        port_->ErrorEvent()->Reset();
        const int reads = device_.CallCount(CommCall::Read);
        device_.Feed("unread");
        port_->SetBaudRate(4800);  // an operation's error record is its own
        EXPECT_EQ(Error(), "");
        port_->Write(BlockOf("w"));  // the writer lives on
        EXPECT_THAT(WriteReports(1), ElementsAre(1u));
        EXPECT_EQ(Failure(), expected);
        EXPECT_FALSE(port_->DataReceivedEvent()->Wait(0));
        EXPECT_FALSE(port_->ErrorEvent()->Wait(0));
        EXPECT_EQ(device_.CallCount(CommCall::Read), reads);

        port_->Close();
        EXPECT_EQ(Failure(), "");
        OpenQuietly();
        device_.Feed("again");
        EXPECT_EQ(Receive(5), "again");
        port_->Close();
    }
}

TEST_F(PortTest, ReportsAFailingWrite) {
    OpenQuietly();
    device_.FailCall(CommCall::Write, 1, 22);
    port_->Write(BlockOf("a"));
    EXPECT_EQ(Error(), "");
    ASSERT_TRUE(port_->ErrorEvent()->Wait(kPatienceMs));
    EXPECT_EQ(Failure(), "22 Error reading data from serial port.");
    device_.Feed("in");  // the reader lives on
    EXPECT_EQ(Receive(2), "in");
    port_->Write(BlockOf("b"));
    port_->Close();
    EXPECT_EQ(device_.written(), "");
    OpenQuietly();
    port_->Write(BlockOf("c"));
    EXPECT_THAT(WriteReports(1), ElementsAre(1u));
    EXPECT_EQ(device_.written(), "c");
}

TEST_F(PortTest, WritesABlockPerWake) {
    OpenQuietly();
    port_->Write(BlockOf("one"));
    EXPECT_THAT(WriteReports(1), ElementsAre(3u));
    EXPECT_EQ(device_.written(), "one");

    // Two come while the writer is busy: the writer wakes once for both.
    device_.HoldWrites(true);
    port_->Write(BlockOf("1"));
    device_.WaitForCalls(CommCall::Write, 2);
    port_->Write(BlockOf("22"));
    port_->Write(BlockOf("333"));
    device_.HoldWrites(false);
    EXPECT_THAT(WriteReports(2), ElementsAre(1u, 2u));
    EXPECT_EQ(device_.written(), "one122");
    port_->Write(BlockOf("4444"));
    EXPECT_THAT(WriteReports(1), ElementsAre(3u));
    EXPECT_EQ(device_.written(), "one122333");
}

TEST_F(PortTest, SwitchingQueuesOffEmptiesThem) {
    OpenWatching();
    device_.Feed("in");
    Await(port_->DataReceivedEvent());
    port_->Write(BlockOf("a"));
    Await(port_->WriteDoneEvent());
    device_.SetLines(kModemDsrOn);
    Await(port_->LineChangedEvent());
    port_->SetQueueReceived(false);
    port_->SetReportWrites(false);
    port_->SetWatchLines(false);
    EXPECT_FALSE(port_->TakeReceived());
    EXPECT_FALSE(port_->TakeWriteDone());
    EXPECT_FALSE(port_->TakeLineEvent());

    // What happens now is seen by the threads and by nobody else.
    device_.Feed("in");
    port_->Write(BlockOf("b"));
    device_.SetLines(0);
    device_.WaitForCalls(CommCall::Read, device_.CallCount(CommCall::Read) + 2);
    device_.WaitForCalls(CommCall::WaitEvent, 3);
    while (device_.written() != "ab")
        continue;
    EXPECT_FALSE(port_->DataReceivedEvent()->Wait(0));
    EXPECT_FALSE(port_->LineChangedEvent()->Wait(0));
    EXPECT_FALSE(port_->TakeReceived());
    EXPECT_FALSE(port_->TakeLineEvent());

    port_->SetQueueReceived(true);
    port_->SetReportWrites(true);
    device_.Feed("out");
    EXPECT_EQ(Receive(3), "out");
    port_->Write(BlockOf("four"));
    EXPECT_THAT(WriteReports(1), ElementsAre(4u));
}

TEST_F(PortTest, ReportsLineChanges) {
    constexpr std::uint32_t kAll = kModemCtsOn | kModemDsrOn | kModemRingOn | kModemRlsdOn;
    const struct {
        std::uint32_t lines;
        std::uint32_t code;
    } kCases[] = {
        {kModemDsrOn, 1},
        {0, 2},
        {kModemCtsOn, 3},
        {0, 4},
        {kModemRingOn, 5},
        {0, 6},
        {kModemRlsdOn, 7},
        {0, 8},
        // Of several changes only the first is told, and remembered.
        {kAll, 3},
        {kAll & ~kModemRlsdOn, 1},
        {kAll, 5},
        {kAll & ~kModemRingOn, 6},
        {kModemDsrOn | kModemCtsOn, 0},
        {kModemDsrOn, 4},
        {kModemCtsOn, 3},
    };
    OpenWatching();
    EXPECT_THAT(device_.TakeLog(), testing::Contains("SetMask 312"));
    for (const auto& [lines, code] : kCases) {
        SCOPED_TRACE(testing::Message() << "lines " << lines);
        device_.SetLines(lines);
        Await(port_->LineChangedEvent());
        const Ref<PortEvent> event = port_->TakeLineEvent();
        ASSERT_TRUE(event);
        EXPECT_EQ(event->value(), code);
        EXPECT_FALSE(port_->TakeLineEvent());
    }
}

TEST_F(PortTest, WatchesFromTheLinesAsTheyAreWhenOpened) {
    device_.SetLines(kModemCtsOn | kModemRlsdOn);
    OpenWatching();
    device_.SetLines(kModemCtsOn);
    Await(port_->LineChangedEvent());
    EXPECT_EQ(port_->TakeLineEvent()->value(), 8u);
}

TEST_F(PortTest, ReportsAFailingLineWatch) {
    device_.FailCall(CommCall::GetModemStatus, 4, 30);
    device_.FailCall(CommCall::WaitEvent, 2, 31);
    OpenWatching();
    EXPECT_EQ(Failure(), "30 Error reading DSR");
    EXPECT_FALSE(port_->ErrorEvent()->Wait(0));
    device_.SetLines(kModemCtsOn);
    ASSERT_TRUE(port_->ErrorEvent()->Wait(kPatienceMs));
    EXPECT_EQ(Failure(), "31 WaitCommEvent() Error.");
    EXPECT_EQ(port_->TakeLineEvent()->value(), 3u);
    port_->Close();
    EXPECT_EQ(Failure(), "");
}

}  // namespace
}  // namespace kavrel
