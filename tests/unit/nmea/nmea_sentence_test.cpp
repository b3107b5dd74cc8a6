#include "nmea/nmea_sentence.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/nmea/reference_sentence.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

class NmeaSentenceTest : public testing::Test {
  protected:
    void ExpectNoError() { EXPECT_EQ(sentence_->error().code(), kNoError); }
    void ExpectError(ErrorCode code, std::string_view text) {
        EXPECT_EQ(sentence_->error().code(), code);
        EXPECT_EQ(sentence_->error().text(), text);
    }
    void ExpectFields(const std::vector<std::string_view>& fields) {
        ASSERT_EQ(sentence_->FieldCount(), static_cast<std::int32_t>(fields.size()));
        for (std::size_t i = 0; i < fields.size(); ++i) {
            EXPECT_EQ(sentence_->Field(static_cast<std::int32_t>(i + 1)), fields[i]) << i + 1;
            ExpectNoError();
        }
    }
    void ExpectEmpty() {
        EXPECT_EQ(sentence_->Text(), "");
        EXPECT_EQ(sentence_->FieldCount(), 0);
        EXPECT_EQ(sentence_->Command(), "");
        EXPECT_EQ(sentence_->FullCommand(), "");
        EXPECT_EQ(sentence_->Type(), SentenceType::Other);
    }

    Ref<NmeaSentence> sentence_ = MakeRef<NmeaSentence>();
};

TEST_F(NmeaSentenceTest, TextsOfAnyShape) {
    const struct {
        std::string_view text;
        std::string_view fullCommand;
        std::vector<std::string_view> fields;
    } kCases[] = {
        {"$GPGGA", "GPGGA", {}},
        {"$GPGGA,123519,4807.038,N,*47", "GPGGA", {"123519", "4807.038", "N", ""}},
        {"$GPGGA,,,", "GPGGA", {"", "", ""}},
        {"$GPGGA,a", "GPGGA", {"a"}},
        {"$GPGGA*56", "GPGGA", {}},
        {"$GPGGA,a*b,c", "GPGGA", {"a", "c"}},  // a comma behind the "*" opens a field, too
        {"$GPGGA,*,*", "GPGGA", {"", ""}},
        {"!AIVDM,1", "AIVDM", {"1"}},
        {"$G,,,,", "G,,,,", {"", "", "", ""}},  // commas in the address count
        {"$PG,A,b", "PG,A,", {"A", "b"}},
        {"$GPGGA,a\r,b", "GPGGA", {"a\r", "b"}},
    };
    for (const auto& each : kCases) {
        sentence_->SetText(each.text);
        EXPECT_EQ(sentence_->Text(), each.text);
        EXPECT_EQ(sentence_->TextWithLineEnd(), std::string(each.text) + "\r\n");
        EXPECT_EQ(sentence_->FullCommand(), each.fullCommand) << each.text;
        EXPECT_EQ(sentence_->Command(), each.fullCommand.substr(2)) << each.text;
        ExpectFields(each.fields);
    }
}

TEST_F(NmeaSentenceTest, AShortTextLeavesItEmpty) {
    ExpectEmpty();
    for (const std::string_view text : {"", "$", "$GPGG", "$,,,,"}) {
        sentence_->SetText("$GPGGA,1,2*00");
        sentence_->SetField(1, "x");
        sentence_->Field(0);
        sentence_->SetText(text);
        ExpectNoError();
        ExpectEmpty();
        EXPECT_EQ(sentence_->TextWithLineEnd(), "\r\n");
        ExpectNoError();
    }
    sentence_->SetText({});
    ExpectEmpty();
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
    constexpr auto kMin = std::numeric_limits<std::int32_t>::min();
    constexpr auto kMax = std::numeric_limits<std::int32_t>::max();
    std::string text = "$GPGGA";
    for (int i = 1; i <= 300; ++i)
        text += ",f" + std::to_string(i);
    sentence_->SetText(text);
    ASSERT_EQ(sentence_->FieldCount(), 300);
    for (const std::int32_t index : {1, 257, -255})
        EXPECT_EQ(sentence_->Field(index), "f1");
    EXPECT_EQ(sentence_->Field(65536 + 127), "f127");
    ExpectNoError();
    for (const std::int32_t index : {0, -1, 128, 172, 255, 256, kMin, kMax}) {
        EXPECT_EQ(sentence_->Field(index), "") << index;
        ExpectError(10004, "Index out of bounds");
    }
    EXPECT_EQ(sentence_->Text(), text);
    ExpectNoError();
    // The decoders' access knows no such limit.
    for (std::int32_t number = 1; number <= 300; ++number) {
        EXPECT_EQ(sentence_->FieldOrEmpty(number), "f" + std::to_string(number));
    }
    for (const std::int32_t number : {0, -1, 301})
        EXPECT_EQ(sentence_->FieldOrEmpty(number), "");
}

TEST_F(NmeaSentenceTest, SetFieldFillsTheGap) {
    sentence_->SetField(2, "b");
    EXPECT_EQ(sentence_->Text(), Sentence(",,b"));
    sentence_->SetText("$GPGGA,a,b*00");
    sentence_->SetField(5, "x,y*z");  // written as it is
    ExpectFields({"a", "b", "", "", "x,y*z"});
    EXPECT_EQ(sentence_->Text(), Sentence("GPGGA,a,b,,,x,y*z"));
    EXPECT_EQ(sentence_->TextWithLineEnd(), Sentence("GPGGA,a,b,,,x,y*z") + "\r\n");
    sentence_->SetText("$GPRMC,d*00");
    EXPECT_EQ(sentence_->Text(), "$GPRMC,d*00");
    ExpectFields({"d"});
}

TEST_F(NmeaSentenceTest, NumbersBelowOneAreKeptOutOfTheText) {
    sentence_->SetText("$GPGGA,a");
    for (const std::int32_t number : {0, -5, std::numeric_limits<std::int32_t>::min()}) {
        sentence_->SetField(number, "hidden");
        ExpectNoError();
        EXPECT_EQ(sentence_->FieldCount(), 1);
        EXPECT_EQ(sentence_->Text(), Sentence("GPGGA,a"));
        EXPECT_EQ(sentence_->Field(number), "");
        ExpectError(10004, "Index out of bounds");
    }
}

TEST_F(NmeaSentenceTest, AHugeNumberFillsTheTextWithCommas) {
    for (const std::int32_t number : {100000, std::numeric_limits<std::int32_t>::max()}) {
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
        const std::string uncut = "$" + body;
        // "*" and two digits are added as long as the text without them is at most 252 long.
        EXPECT_EQ(sentence_->Text(), length <= 252 ? Sentence(body) : uncut.substr(0, 255))
            << length;
        EXPECT_EQ(sentence_->Field(1).size(), length - 7);
    }
}

TEST_F(NmeaSentenceTest, AValueMayComeFromTheSentenceItself) {
    sentence_->SetText("$GPGGA,first,second");
    sentence_->SetField(2, sentence_->Field(1));
    sentence_->SetField(3, sentence_->Field(2));
    sentence_->SetField(3, sentence_->Field(3));
    ExpectFields({"first", "first", "first"});
    sentence_->SetCommand(sentence_->Command());
    EXPECT_EQ(sentence_->FullCommand(), "GPGGA");
    sentence_->SetCommand(sentence_->FullCommand());
    EXPECT_EQ(sentence_->Text(), Sentence("GPGGA,first,first,first"));
}

TEST_F(NmeaSentenceTest, SetsTheCommand) {
    const struct {
        std::string_view command;
        std::string_view expectedCommand;
        std::string_view expectedFullCommand;
    } kCases[] = {
        {"RMC", "RMC", "GPRMC"},
        {"PGRME", "RME", "PGRME"},
        {"rmc", "rmc", "GPrmc"},
        {"GLGSV", "GSV", "GLGSV"},
    };
    for (const auto& each : kCases) {
        sentence_->SetText("$GNGGA,a,b*00");
        sentence_->SetCommand(each.command);
        ExpectNoError();
        EXPECT_EQ(sentence_->Command(), each.expectedCommand);
        EXPECT_EQ(sentence_->FullCommand(), each.expectedFullCommand);
        EXPECT_EQ(sentence_->Text(), Sentence(std::string(each.expectedFullCommand) + ",a,b"));
        ExpectFields({"a", "b"});
    }
}

TEST_F(NmeaSentenceTest, RefusesOtherCommands) {
    sentence_->SetText("$GNGGA,a*00");
    for (const std::string_view command : {"", "GG", "GPGG", "GPGGAA"}) {
        sentence_->SetCommand(command);
        ExpectError(10003, "Command must be 3 or 5 characters long");
    }
    sentence_->SetCommand(std::string_view());
    ExpectError(10003, "Null command not allowed");
    EXPECT_EQ(sentence_->FullCommand(), "GNGGA");
    EXPECT_EQ(sentence_->Text(), "$GNGGA,a*00");  // not rebuilt: nothing changed
    ExpectNoError();
}

TEST_F(NmeaSentenceTest, TypesAreTheFormattersInEitherCase) {
    const struct {
        std::string_view text;
        int type;
    } kCases[] = {
        {"$GPRMC", 1}, {"$GNGLL", 2},    {"$GPGGA", 3}, {"$GLGSV", 4}, {"$GPGSA", 5},
        {"$GPVTG", 6}, {"$gprmc", 1},    {"$GPgGa", 3}, {"$GPZDA", 0}, {"$PGRME", 0},
        {"$RMCxx", 0}, {"$GP\x92MC", 0}, {"$GP2MC", 0}, {"", 0},
    };
    for (const auto& each : kCases) {
        sentence_->SetText(each.text);
        EXPECT_EQ(static_cast<int>(sentence_->Type()), each.type) << each.text;
    }
}

// Random operations against the rules in their plainest form.
TEST_F(NmeaSentenceTest, AgreesWithTheRules) {
    std::mt19937_64 random(5);
    ReferenceSentence reference;
    const auto text = [&random](std::size_t limit) {
        constexpr std::string_view kAlphabet = "$,,,*AGP1.x\xE4";
        std::string result(random() % limit, '\0');
        for (char& c : result)
            c = kAlphabet[random() % kAlphabet.size()];
        return result;
    };
    for (int round = 0; round < 100000; ++round) {
        switch (random() % 6) {
            case 0: {
                const std::string value = text(random() % 16 == 0 ? 400 : 60);
                sentence_->SetText(value);
                reference.SetText(value);
                break;
            }
            case 1: {
                const auto number = static_cast<std::int32_t>(random() % 40) - 3;
                const std::string value = text(12);
                sentence_->SetField(number, value);
                reference.SetField(number, value);
                break;
            }
            case 2: {
                const std::string command = text(7);
                sentence_->SetCommand(command);
                ASSERT_EQ(!sentence_->error().IsSet(), reference.SetCommand(command)) << command;
                break;
            }
            case 3: {
                const auto index = static_cast<std::int32_t>(random() % 600) - 300;
                std::string expected;
                const bool isInBounds = reference.Field(index, expected);
                ASSERT_EQ(sentence_->Field(index), expected);
                ASSERT_EQ(!sentence_->error().IsSet(), isInBounds);
                break;
            }
            default:
                ASSERT_EQ(sentence_->Text(), reference.Text());
                ASSERT_EQ(sentence_->TextWithLineEnd(), reference.Text() + "\r\n");
        }
        ASSERT_EQ(sentence_->FieldCount(), reference.FieldCount());
        ASSERT_EQ(sentence_->FullCommand(), reference.FullCommand());
        std::string field;
        const auto number = static_cast<std::int32_t>(random() % 45) + 1;
        reference.Field(number, field);
        ASSERT_EQ(sentence_->FieldOrEmpty(number), field) << number;
    }
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
    const std::u16string text = u"$G\u0141GGA,a\u012Cb,\u0124,z*00";
    SetText(text);
    EXPECT_EQ(Wide(sentence_->TextAsGiven()), text);
    EXPECT_EQ(sentence_->Text(),
              "$G\x1AGGA,a\x1A"
              "b,\x1A,z*00");
    EXPECT_EQ(sentence_->FieldCount(), 3);
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(1)), u"a\u012Cb");
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(2)), u"\u0124");
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(3)), u"z");
    EXPECT_EQ(Wide(sentence_->FullCommandAsGiven()), u"G\u0141GGA");
    EXPECT_EQ(Wide(sentence_->CommandAsGiven()), u"GGA");
    EXPECT_EQ(sentence_->Type(), SentenceType::Gga);
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(4)), u"");
    ExpectError(10004, "Index out of bounds");

    SetText(u"$\u0141GGA");
    EXPECT_EQ(Wide(sentence_->TextAsGiven()), u"") << "too short";
    sentence_->SetText("$GPGGA,\xE9");
    EXPECT_TRUE(sentence_->TextAsGiven().wide.empty());
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(1)), u"\u00E9");
    EXPECT_EQ(Wide(sentence_->FullCommandAsGiven()), u"GPGGA");
}

TEST_F(WideSentenceTest, RebuildsWithAllBits) {
    SetText(u"$GPGGA,a\u012C,b*00");
    SetField(3, u"\u0141\u0142");
    EXPECT_EQ(Wide(sentence_->TextAsGiven()), Finished(u"$GPGGA,a\u012C,b,\u0141\u0142"));
    EXPECT_EQ(sentence_->TextWithLineEnd().substr(0, 9), "$GPGGA,a\x1A");
    EXPECT_EQ(Wide(sentence_->FieldAsGiven(1)), u"a\u012C");
    SetCommand(u"R\u0141C");
    EXPECT_EQ(Wide(sentence_->FullCommandAsGiven()), u"GPR\u0141C");
    EXPECT_EQ(Wide(sentence_->CommandAsGiven()), u"R\u0141C");
    EXPECT_EQ(Wide(sentence_->TextAsGiven()), Finished(u"$GPR\u0141C,a\u012C,b,\u0141\u0142"));

    // Back to 8 bits, part by part.
    sentence_->SetCommand("RMC");
    EXPECT_EQ(Wide(sentence_->FullCommandAsGiven()), u"GPRMC");
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
        EXPECT_EQ(Wide(sentence_->TextAsGiven()),
                  length == 245 ? Finished(whole) : whole.substr(0, 255));
        EXPECT_EQ(Wide(sentence_->FieldAsGiven(1)), field);
    }
    SetCommand(u"\u0141\u0141");
    ExpectError(10003, "Command must be 3 or 5 characters long");
}

}  // namespace
}  // namespace kavrel
