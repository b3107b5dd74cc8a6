#include "base/error_slot.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "table.h"

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

TEST(Messages, AreFixedToTheLetter) {
    int number = 0;
    ForEachRow("base/messages.csv", [&number](const Row& row) {
        const std::string_view text = MessageText(static_cast<Message>(number++));
        EXPECT_EQ(text, row.Text(1));
        EXPECT_EQ(text.data()[text.size()], '\0');
    });
    EXPECT_EQ(number, static_cast<int>(Message::Count));
    EXPECT_EQ(MessageText(Message::Count), "Unknown Error");
    EXPECT_EQ(MessageText(static_cast<Message>(255)), "Unknown Error");
}

}  // namespace
}  // namespace kavrel
