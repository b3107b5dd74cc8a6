#include "base/error_slot.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

namespace kavrel {
namespace {

TEST(ErrorSlot, KeepsWhatWasSetLast) {
    ErrorSlot slot;
    EXPECT_EQ(slot.text(), "");
    std::string text = "Something long enough to need memory of its own";
    slot.Set(5, text);
    text.assign(text.size(), '?');
    EXPECT_EQ(slot.code(), 5u);
    EXPECT_EQ(slot.text(), "Something long enough to need memory of its own");
    slot.Set(kErrorWrongState, Message::PortMustBeEnabled);
    EXPECT_EQ(slot.code(), 10006u);
    EXPECT_EQ(slot.text(), "Port must be enabled!");
    slot.Set(10003, std::string_view());
    EXPECT_EQ(slot.text(), "Unknown Error");
    slot.Set(10004, "");
    EXPECT_EQ(slot.text(), "Unknown Error");
}

TEST(ErrorSlot, ClearsAlsoByCodeZero) {
    ErrorSlot slot;
    for (const bool isByCode : {false, true}) {
        slot.Set(7, "text");
        EXPECT_TRUE(slot.IsSet());
        isByCode ? slot.Set(kNoError, "no error, but a text") : slot.Clear();
        EXPECT_FALSE(slot.IsSet());
        EXPECT_EQ(slot.code(), kNoError);
        EXPECT_EQ(slot.text(), "");
    }
}

TEST(ErrorSlot, CopiesCodeAndText) {
    ErrorSlot source;
    source.Set(0x80004005u, "from the platform");
    ErrorSlot slot;
    slot.CopyFrom(&source);
    source.Clear();
    slot.CopyFrom(&slot);
    EXPECT_EQ(slot.code(), 0x80004005u);
    EXPECT_EQ(slot.text(), "from the platform");
    slot.CopyFrom(&source);
    EXPECT_FALSE(slot.IsSet());
    slot.CopyFrom(nullptr);
    EXPECT_EQ(slot.code(), 10005u);
    EXPECT_EQ(slot.text(), "NULL argument to m_copy_err()");
}

// The texts that hosts are known to compare, and those whose misspelling somebody might correct.
TEST(Messages, AreFixedToTheLetter) {
    const struct {
        Message message;
        std::string_view text;
    } kCases[] = {
        {Message::InvalidParameter, "Invalid parameter!"},
        {Message::UnknownDatum, "Unknown datum!"},
        {Message::InvalidDegrees, "Invalid value of Degrees. Must be between 0 and 90!"},
        {Message::InvalidLatitude, "Invalid latitude. Must be between -PI/2 and PI/2"},
        {Message::UnknownGrid, "Unknown grid!"},
        {Message::InvalidZone, "Invalid Zone for this grid!"},
        {Message::ZoneMissing, "Zone must be specified for this grid"},
        {Message::GridNotSet, "Grid not set!"},
        {Message::IndexOutOfBounds, "Index out of bounds"},
        {Message::NoEventsMustBeSet, "NoEvents must be set!"},
        {Message::PortMustNotBeEnabled, "Port must not be enabled!"},
        {Message::AutodetectNotAllowed, "Autodetect mode not allowed"},
        {Message::UnexpectedPortError, "Unexpected com port error."},
        {Message::UnknownBaudRate, "Unknown baudrate!"},
        {Message::PortDoesNotExist, "Comm port does not exist"},
        {Message::PortInUse, "Comm port in use!"},
        {Message::PortNotOpened, "Could not open comm port!"},
        {Message::NotAValidObject, "Parameter not a valid object!"},
        {Message::UnexpectedError, "Unexcpected error"},
        {Message::NotAWaypoints, "Paramenter not an Waypoints object!"},
    };
    for (const auto& each : kCases)
        EXPECT_EQ(MessageText(each.message), each.text);
}

TEST(Messages, EachHasATextOfItsOwn) {
    std::set<std::string_view> seen;
    for (int i = 0; i < static_cast<int>(Message::Count); ++i) {
        const std::string_view text = MessageText(static_cast<Message>(i));
        EXPECT_FALSE(text.empty()) << i;
        EXPECT_EQ(text.data()[text.size()], '\0') << i;
        EXPECT_TRUE(seen.insert(text).second) << text;
    }
    EXPECT_EQ(MessageText(Message::Count), "Unknown Error");
    EXPECT_EQ(MessageText(static_cast<Message>(255)), "Unknown Error");
}

}  // namespace
}  // namespace kavrel
