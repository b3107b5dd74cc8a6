// What does not go into a dialogue: a serial port's events, its blocks, the tweak beside its
// opening, and much of everything at once.
#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <thread>

#include "unit/serial/port_fixture.h"

namespace kavrel {
namespace {

constexpr std::u16string_view kBluetooth = u"SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008";

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

// The tweak writes one thing before and another after opening; a write that fails leaves the
// other's to be seen.
TEST_F(PortTest, TweaksBluetoothBeforeAndAfterOpening) {
    using Written = std::optional<std::vector<std::uint8_t>>;
    const Written kOff = {{0, 0, 0, 0}};
    const Written kOn = {{1, 0, 0, 0}};
    const struct {
        std::int32_t port;
        bool isSkipped;
        bool browserOff;
        Written before;
        Written after;
    } kCases[] = {{8, false, true, kOff, kOn}, {8, false, false, kOn, kOn},
                  {8, true, true, {}, {}},     {7, false, true, {}, {}},
                  {0, false, true, {}, {}},    {80, false, true, {}, {}}};
    for (const auto& [number, isSkipped, browserOff, before, after] : kCases) {
        for (const int failingWrite : {0, 1}) {
            // One that opening does not make, the first that it makes, and a later one.
            for (const CommCall failing : {CommCall::Write, CommCall::Open, CommCall::SetState}) {
                SCOPED_TRACE(testing::Message()
                             << number << isSkipped << browserOff << static_cast<int>(failing));
                MemoryRegistryStore registry;
                auto device = std::make_unique<ScriptedCommDevice>();
                device->FailCall(failing, 1, 2);
                const auto port = MakeRef<SerialPort>(std::move(device), registry);
                port->SetPort(number);
                port->SetSkipBluetoothTweak(isSkipped);
                port->SetBluetoothBrowserOff(browserOff);
                registry.AddKey(kBluetooth);
                registry.Fail(RegistryCall::SetValue, 5, failingWrite);
                port->Open();
                EXPECT_EQ(port->IsOpen(), failing == CommCall::Write);
                const auto value = registry.FindValue(kBluetooth, u"BtBrowserEnabled");
                EXPECT_EQ(value ? value->data : Written(), failingWrite == 1 ? before : after);
            }
        }
    }
}

TEST_F(PortTest, TweaksNothingUnlessAskedToOrWithoutTheStack) {
    port_->SetPort(8);
    port_->SetSkipBluetoothTweak(false);
    port_->Open();
    EXPECT_FALSE(registry_.HasKey(u"SOFTWARE"));
    registry_.AddKey(kBluetooth);
    const auto fresh = MakeRef<SerialPort>(std::make_unique<ScriptedCommDevice>(), registry_);
    fresh->SetPort(8);
    fresh->Open();
    EXPECT_FALSE(registry_.FindValue(kBluetooth, u"BtBrowserEnabled"));
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

TEST_F(PortTest, OpensAndClosesAThousandTimes) {
    const std::int32_t closed = Record::LiveCount();
    for (int i = 0; i < 1000; ++i) {
        port_->Open();
        ASSERT_TRUE(port_->IsOpen());
        if (i % 3 == 0) device_.Feed("bytes that nobody takes");
        if (i % 5 == 0) port_->Write(BlockOf("sent or not"));
        port_->Close();
        ASSERT_EQ(Record::LiveCount(), closed);
    }
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
