#include "nmea/nmea_sentence.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
constexpr auto kMax = std::numeric_limits<std::int32_t>::max();

class NmeaSentenceTest : public testing::Test {
  protected:
    std::string_view Error() { return sentence_->error().text(); }
    std::vector<std::string> AllFields() {
        std::vector<std::string> fields;
        for (std::int32_t number = 1; number <= sentence_->FieldCount(); ++number) {
            fields.emplace_back(sentence_->Field(number));
            EXPECT_EQ(Error(), "");
        }
        return fields;
    }

    Ref<NmeaSentence> sentence_ = MakeRef<NmeaSentence>();
};

using Fields = std::vector<std::string>;

TEST_F(NmeaSentenceTest, TextsOfAnyShape) {
    ForEachRow("nmea/sentences.csv", [this](const Row& row) {
        sentence_->SetText(row.Text(0));
        EXPECT_EQ(sentence_->Text(), row.Text(0));
        EXPECT_EQ(sentence_->TextWithLineEnd(), row.Text(0) + "\r\n");
        EXPECT_EQ(sentence_->FullCommand(), row.Text(1));
        EXPECT_EQ(sentence_->Command(), row.Text(1).substr(2));
        EXPECT_EQ(static_cast<int>(sentence_->Type()), row.Integer(2));
        EXPECT_EQ(AllFields(), row.From(3));
    });
}

TEST_F(NmeaSentenceTest, AShortTextLeavesItEmpty) {
    for (const std::string_view text : {"", "$", "$GPGG", "$,,,,"}) {
        EXPECT_EQ(sentence_->Text(), "");
        EXPECT_EQ(sentence_->TextWithLineEnd(), "\r\n");
        EXPECT_EQ(sentence_->FieldCount(), 0);
        EXPECT_EQ(sentence_->Command(), "");
        EXPECT_EQ(sentence_->FullCommand(), "");
        EXPECT_EQ(sentence_->Type(), SentenceType::Other);
        sentence_->SetText("$GPGGA,1,2*00");
        sentence_->SetField(1, "x");
        sentence_->Field(0);
        sentence_->SetText(text);
        EXPECT_EQ(Error(), "");
    }
}

TEST_F(NmeaSentenceTest, CountsChanges) {
    std::uint32_t count = sentence_->ChangeCount();
    const auto hasChanged = [&] { return std::exchange(count, sentence_->ChangeCount()) != count; };
    sentence_->SetText("$GPGGA,1");
    EXPECT_TRUE(hasChanged());
    sentence_->SetField(1, "2");
    EXPECT_TRUE(hasChanged());
    sentence_->SetField(1, "3");
    EXPECT_TRUE(hasChanged());
    sentence_->SetCommand("RMC");
    EXPECT_TRUE(hasChanged());
    sentence_->SetCommand("four");
    sentence_->TextWithLineEnd();
    EXPECT_FALSE(hasChanged());
}

TEST_F(NmeaSentenceTest, IndexesAreCutToEightBits) {
    std::string text = "$GPGGA";
    for (int i = 1; i <= 300; ++i)
        text += ",f" + std::to_string(i);
    sentence_->SetText(text);
    ASSERT_EQ(sentence_->FieldCount(), 300);
    for (const std::int32_t index : {1, 257, -255, 65537})
        EXPECT_EQ(sentence_->Field(index), "f1");
    EXPECT_EQ(Error(), "");
    for (const std::int32_t index : {0, -1, 128, 172, 255, 256, kMin, kMax}) {
        EXPECT_EQ(sentence_->Field(index), "") << index;
        EXPECT_EQ(Error(), "Index out of bounds");
        EXPECT_EQ(sentence_->error().code(), 10004u);
    }
    EXPECT_EQ(sentence_->Text(), text);
    EXPECT_EQ(Error(), "");
    // The decoders' access knows no such limit.
    for (std::int32_t number = 1; number <= 300; ++number)
        EXPECT_EQ(sentence_->FieldOrEmpty(number), "f" + std::to_string(number));
    for (const std::int32_t number : {0, -1, 301})
        EXPECT_EQ(sentence_->FieldOrEmpty(number), "");
}

TEST_F(NmeaSentenceTest, SetFieldFillsTheGap) {
    sentence_->Field(1);
    sentence_->SetField(2, "b");
    EXPECT_EQ(Error(), "");
    EXPECT_EQ(sentence_->TextWithLineEnd(), Line(",,b"));
    sentence_->SetCommand("GGA");
    EXPECT_EQ(sentence_->TextWithLineEnd(), Line("GPGGA,,b"));
    sentence_->SetText("$GPGGA,a,b*00");
    sentence_->SetField(5, "x,y*z");  // written as it is
    EXPECT_EQ(AllFields(), (Fields{"a", "b", "", "", "x,y*z"}));
    EXPECT_EQ(sentence_->TextWithLineEnd(), Line("GPGGA,a,b,,,x,y*z"));
}

TEST_F(NmeaSentenceTest, AHugeNumberFillsTheTextWithCommas) {
    for (const std::int32_t number : {100000, kMax}) {
        sentence_->SetText("$GPGGA,a");
        sentence_->SetField(number, "never seen");
        EXPECT_EQ(sentence_->FieldCount(), number);
        EXPECT_EQ(sentence_->Text(), "$GPGGA,a" + std::string(255 - 8, ','));
        EXPECT_EQ(sentence_->FieldOrEmpty(number), "never seen");
    }
}

TEST_F(NmeaSentenceTest, ALongTextIsCutAndLosesItsChecksum) {
    for (std::size_t length = 240; length < 270; ++length) {
        const std::string body = "GPGGA," + std::string(length - 7, 'x');
        sentence_->SetText("$GPGGA");
        sentence_->SetField(1, std::string_view(body).substr(6));
        // "*" and two digits are added as long as the text without them is at most 252 long.
        EXPECT_EQ(sentence_->Text(), length <= 252 ? Sentence(body) : ("$" + body).substr(0, 255));
        EXPECT_EQ(sentence_->Field(1).size(), length - 7);
    }
}

TEST_F(NmeaSentenceTest, AValueMayComeFromTheSentenceItself) {
    sentence_->SetText("$GPGGA,first,second");
    sentence_->SetField(2, sentence_->Field(1));
    sentence_->SetField(3, sentence_->Field(2));
    sentence_->SetField(3, sentence_->Field(3));
    sentence_->SetCommand(sentence_->Command());
    sentence_->SetCommand(sentence_->FullCommand());
    EXPECT_EQ(sentence_->Text(), Sentence("GPGGA,first,first,first"));
}

TEST_F(NmeaSentenceTest, SetsTheCommand) {
    const std::pair<std::string_view, std::string> kCases[] = {
        {"RMC", "GPRMC"}, {"PGRME", "PGRME"}, {"rmc", "GPrmc"}, {"GLGSV", "GLGSV"}};
    for (const auto& [command, fullCommand] : kCases) {
        sentence_->SetText("$GNGGA,a,b*00");
        sentence_->SetCommand(command);
        EXPECT_EQ(Error(), "");
        EXPECT_EQ(sentence_->FullCommand(), fullCommand);
        EXPECT_EQ(sentence_->Text(), Sentence(fullCommand + ",a,b"));
    }
    EXPECT_EQ(sentence_->Type(), SentenceType::Gsv);
}

TEST_F(NmeaSentenceTest, RefusesOtherCommands) {
    sentence_->SetText("$GNGGA,a*00");
    for (const std::string_view command : {"", "GG", "GPGG", "GPGGAA"}) {
        sentence_->SetCommand(command);
        EXPECT_EQ(Error(), "Command must be 3 or 5 characters long");
    }
    sentence_->SetCommand(std::string_view());
    EXPECT_EQ(Error(), "Null command not allowed");
    EXPECT_EQ(sentence_->error().code(), 10003u);
    EXPECT_EQ(sentence_->Text(), "$GNGGA,a*00");  // not rebuilt: nothing changed
    EXPECT_EQ(Error(), "");
}

// Characters of more than 8 bits, in texts as a host gives them. U+012C and U+0124 would be a comma
// and a dollar if they were cut.
class WideSentenceTest : public NmeaSentenceTest {
  protected:
    static std::u16string Wide(const TextView& text) {
        EXPECT_TRUE(text.wide.empty() || text.wide.size() == text.narrow.size());
        std::u16string wide;
        AppendWide(wide, text);
        return wide;
    }
    std::u16string Text() { return Wide(sentence_->TextAsGiven()); }
    std::u16string Field(std::int32_t number) { return Wide(sentence_->FieldAsGiven(number)); }
    std::u16string FullCommand() { return Wide(sentence_->FullCommandAsGiven()); }
    std::u16string Command() { return Wide(sentence_->CommandAsGiven()); }

    void SetText(std::u16string_view text) { sentence_->SetText({Narrowed(text), text}); }
    void SetField(std::int32_t number, std::u16string_view text) {
        sentence_->SetField(number, {Narrowed(text), text});
    }
    void SetCommand(std::u16string_view text) { sentence_->SetCommand({Narrowed(text), text}); }

    // By hand: the exclusive-or of all characters behind the "$", of which the low 8 bits are kept.
    static std::u16string Finished(std::u16string text) {
        unsigned sum = 0;
        for (const char16_t c : text.substr(1))
            sum ^= c;
        constexpr const char16_t* kDigits = u"0123456789ABCDEF";
        return text + u'*' + kDigits[sum >> 4 & 15] + kDigits[sum & 15];
    }
};

TEST_F(WideSentenceTest, GivesBackWhatItWasGiven) {
    SetText(u"$G\u0141GGA,a\u012Cb,\u0124,z*00");
    EXPECT_EQ(Text(), u"$G\u0141GGA,a\u012Cb,\u0124,z*00");
    EXPECT_EQ(AllFields(), (Fields{"a\x1A"
                                   "b",
                                   "\x1A", "z"}));
    EXPECT_EQ(sentence_->Text().substr(0, 8), "$G\x1AGGA,a");
    EXPECT_EQ(Field(1), u"a\u012Cb");
    EXPECT_EQ(Field(2), u"\u0124");
    EXPECT_EQ(Field(3), u"z");
    EXPECT_EQ(FullCommand(), u"G\u0141GGA");
    EXPECT_EQ(Command(), u"GGA");
    EXPECT_EQ(sentence_->Type(), SentenceType::Gga);
    EXPECT_EQ(Field(4), u"");
    EXPECT_EQ(Error(), "Index out of bounds");

    SetText(u"$\u0141GGA");
    EXPECT_EQ(Text(), u"") << "too short";
    SetText(u"$GPGGA,\u00FF");
    EXPECT_TRUE(sentence_->TextAsGiven().wide.empty());
    EXPECT_EQ(Field(1), u"\u00FF");
}

TEST_F(WideSentenceTest, RebuildsWithAllBits) {
    SetText(u"$GPGGA,a\u012C,b*00");
    SetField(3, u"\u0141\u0142");
    EXPECT_EQ(Text(), Finished(u"$GPGGA,a\u012C,b,\u0141\u0142"));
    EXPECT_EQ(sentence_->TextWithLineEnd().substr(0, 9), "$GPGGA,a\x1A");
    EXPECT_EQ(Field(1), u"a\u012C");
    SetCommand(u"R\u0141C");
    EXPECT_EQ(FullCommand(), u"GPR\u0141C");
    EXPECT_EQ(Command(), u"R\u0141C");
    EXPECT_EQ(Text(), Finished(u"$GPR\u0141C,a\u012C,b,\u0141\u0142"));

    // Back to 8 bits, part by part.
    sentence_->SetCommand("RMC");
    EXPECT_EQ(FullCommand(), u"GPRMC");
    SetField(1, u"a");
    SetField(3, u"");
    EXPECT_EQ(sentence_->Text(), Sentence("GPRMC,a,b,"));
    EXPECT_TRUE(sentence_->TextAsGiven().wide.empty());
}

TEST_F(WideSentenceTest, LengthsCountCharacters) {
    sentence_->SetText("$GPXXX,");
    for (const std::size_t length : {245u, 246u, 248u, 300u}) {
        const std::u16string field(length, u'\u0141');
        SetField(1, field);
        const std::u16string whole = u"$GPXXX," + field;
        EXPECT_EQ(Text(), length == 245 ? Finished(whole) : whole.substr(0, 255));
        EXPECT_EQ(Field(1), field);
    }
    SetCommand(u"\u0141\u0141");
    EXPECT_EQ(Error(), "Command must be 3 or 5 characters long");
}

}  // namespace
}  // namespace kavrel
