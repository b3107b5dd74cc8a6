#include "serial/shared_receiver_source.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/host/scripted_shared_receiver.h"

namespace kavrel {
namespace {

constexpr std::int32_t Status(std::uint32_t bits) {
    return static_cast<std::int32_t>(bits);
}

class SharedReceiverSourceTest : public testing::Test {
  protected:
    // "ok", or code and text of the error.
    std::string Error() const {
        const ErrorSlot& error = source_->error();
        if (!error.IsSet()) return "ok";
        return std::to_string(error.code()) + " " + std::string(error.text());
    }

    // The oldest text that waits, or "(none)".
    std::string TakeText() {
        const Ref<ByteBlock> text = source_->TakeText();
        return text ? std::string(text->bytes().begin(), text->bytes().end()) : "(none)";
    }

    SharedReceiverScript script_;
    Ref<SharedReceiverSource> source_ =
        MakeRef<SharedReceiverSource>(std::make_unique<ScriptedSharedReceiver>(script_));
};

TEST_F(SharedReceiverSourceTest, CreatesConnectsCallsAndReleases) {
    using Calls = std::vector<std::string>;
    EXPECT_EQ(Calls(), script_.calls);
    EXPECT_TRUE(source_->Start());
    EXPECT_TRUE(source_->CallMethod6(1));
    EXPECT_TRUE(source_->CallMethod4());
    EXPECT_TRUE(source_->CallMethod1(-7));
    EXPECT_TRUE(source_->CallMethod2(8));
    EXPECT_EQ("ok", Error());
    source_.Reset();
    EXPECT_EQ((Calls{"create", "connect", "6(1)", "4()", "1(-7)", "2(8)", "release"}),
              script_.calls);
    EXPECT_EQ(nullptr, script_.listener);
}

TEST_F(SharedReceiverSourceTest, AMissingProductIsReported) {
    script_.create = {.status = Status(0x80040154), .errorText = "not this text"};
    EXPECT_FALSE(source_->Start());
    EXPECT_EQ("340 Ravelin not installed! Cannot create object RavelinApi::Simple", Error());
    EXPECT_EQ(Status(0x80040154), source_->lastResult());
    EXPECT_EQ(std::vector<std::string>{"create"}, script_.calls);
    // One without events is no error.
    script_.create = {};
    script_.connect = {.status = Status(0x80040200), .errorText = "no such event"};
    EXPECT_TRUE(source_->Start());
    EXPECT_EQ("ok", Error());
    EXPECT_EQ(Status(0x80040200), source_->lastResult());
}

TEST_F(SharedReceiverSourceTest, AFailingCallIsReportedWithItsOwnText) {
    ASSERT_TRUE(source_->Start());
    script_.method6 = {.status = Status(0x8004ABCD), .errorText = "No receiver"};
    EXPECT_FALSE(source_->CallMethod6(1));
    EXPECT_EQ("43981 No receiver", Error());
    EXPECT_TRUE(source_->CallMethod1(1));
    EXPECT_EQ("ok", Error());
    script_.method4.status = Status(0x80004005);
    EXPECT_FALSE(source_->CallMethod4());
    EXPECT_EQ("16389 Unknown Error", Error());
    EXPECT_EQ(Status(0x80004005), source_->lastResult());
    script_.method2 = {.status = 1, .errorText = "a success has no text"};
    EXPECT_TRUE(source_->CallMethod2(1));
    EXPECT_EQ("ok", Error());
    EXPECT_EQ(1, source_->lastResult());
}

TEST_F(SharedReceiverSourceTest, QueuesTextsInOrderAndSignals) {
    ASSERT_TRUE(source_->Start());
    const Ref<Event> received = source_->DataReceivedEvent();
    const Ref<Event> closed = source_->SourceClosedEvent();
    EXPECT_FALSE(received->Wait(0));

    std::thread product([this] {
        script_.listener->OnText("$GPGGA");
        script_.listener->OnText(std::string_view("\r\n\0\xFF", 4));
    });
    EXPECT_TRUE(received->Wait(10'000));
    product.join();
    EXPECT_FALSE(closed->Wait(0));
    EXPECT_EQ("$GPGGA", TakeText());
    EXPECT_EQ(std::string("\r\n\0\xFF", 4), TakeText());
    EXPECT_EQ("(none)", TakeText());
    EXPECT_TRUE(received->Wait(0)) << "who waits resets";
    script_.listener->OnClosed();
    EXPECT_TRUE(closed->Wait(0));
    EXPECT_EQ("(none)", TakeText());
}

}  // namespace
}  // namespace kavrel
