// Sentences: texts of any shape, and the dialogues of tests/data/nmea/sentence_dialogues.txt.
#include "nmea/nmea_sentence.h"

#include <string>
#include <utility>
#include <vector>

#include "unit/dialogue.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

TEST(NmeaSentence, TextsOfAnyShape) {
    ForEachRow("nmea/sentences.csv", [](const Row& row) {
        const auto sentence = MakeRef<NmeaSentence>();
        sentence->SetText(row.Text(0));
        EXPECT_EQ(sentence->Text(), row.Text(0));
        EXPECT_EQ(sentence->TextWithLineEnd(), row.Text(0) + "\r\n");
        EXPECT_EQ(sentence->FullCommand(), row.Text(1));
        EXPECT_EQ(sentence->Command(), row.Text(1).substr(2));
        EXPECT_EQ(static_cast<int>(sentence->Type()), row.Integer(2));
        std::vector<std::string> fields;
        for (std::int32_t number = 1; number <= sentence->FieldCount(); ++number) {
            fields.emplace_back(sentence->Field(number));
            EXPECT_EQ(sentence->FieldOrEmpty(number), fields.back());
        }
        EXPECT_EQ(fields, row.From(3));
        EXPECT_FALSE(sentence->error().IsSet());
    });
}

// Texts go in as a host gives them, with characters of any bits.
class SentenceDialogue : public testing::TestWithParam<TableGroup> {
  protected:
    SentenceDialogue() {
        dialogue_.AddOperation("SetText", [this](std::u16string_view text) {
            sentence_->SetText({Narrowed(text), text});
        });
        dialogue_.AddOperation("SetField", [this](std::int32_t number, std::u16string_view text) {
            sentence_->SetField(number, {Narrowed(text), text});
        });
        dialogue_.AddOperation("SetCommand", [this](std::u16string_view text) {
            sentence_->SetCommand({Narrowed(text), text});
        });
        dialogue_.AddOperation("SetNoCommand",
                               [this] { sentence_->SetCommand(std::string_view()); });
        dialogue_.AddOperation("Text", [this] {
            const std::string text = Shown(sentence_->TextAsGiven());
            EXPECT_EQ(sentence_->TextWithLineEnd(), std::string(sentence_->Text()) + "\r\n");
            return text;
        });
        dialogue_.AddOperation("Field", [this](std::int32_t number) {
            return Shown(sentence_->FieldAsGiven(number));
        });
        dialogue_.Add("FieldOrEmpty", [this](std::int32_t number) {
            return std::string(sentence_->FieldOrEmpty(number));
        });
        dialogue_.Add("FieldCount", &NmeaSentence::FieldCount);
        dialogue_.Add("FullCommand", [this] { return Shown(sentence_->FullCommandAsGiven()); });
        dialogue_.Add("Command", [this] { return Shown(sentence_->CommandAsGiven()); });
        dialogue_.Add("Type", [this] { return static_cast<int>(sentence_->Type()); });
        dialogue_.Add("IsWide", [this] { return !sentence_->TextAsGiven().wide.empty(); });
        dialogue_.Add("HasChanged", [this, count = 0U]() mutable {
            return std::exchange(count, sentence_->ChangeCount()) != sentence_->ChangeCount();
        });
    }

    Dialogue<NmeaSentence> dialogue_{[this]() -> NmeaSentence& { return *sentence_; }};

  private:
    static std::string Shown(const TextView& text) {
        std::u16string wide;
        AppendWide(wide, text);
        EXPECT_EQ(text.narrow, Narrowed(wide));
        return Utf8(wide);
    }

    Ref<NmeaSentence> sentence_ = MakeRef<NmeaSentence>();
};

TEST_P(SentenceDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, SentenceDialogue,
                         testing::ValuesIn(ReadGroups("nmea/sentence_dialogues.txt")), NameOfGroup);

TEST(NmeaSentence, AHugeNumberFillsTheTextWithCommas) {
    const auto sentence = MakeRef<NmeaSentence>();
    for (const std::int32_t number : {100000, 2147483647}) {
        sentence->SetText("$GPGGA,a");
        sentence->SetField(number, "never seen");
        EXPECT_EQ(sentence->FieldCount(), number);
        EXPECT_EQ(sentence->Text(), "$GPGGA,a" + std::string(255 - 8, ','));
        EXPECT_EQ(sentence->FieldOrEmpty(number), "never seen");
    }
}

// "*" and two digits are added as long as the text without them is at most 252 characters long,
// whatever their bits.
TEST(NmeaSentence, ALongTextIsCutAndLosesItsChecksum) {
    const auto sentence = MakeRef<NmeaSentence>();
    for (const char16_t letter : {u'x', u'\u0141'}) {
        for (std::size_t length = 240; length < 270; ++length) {
            const std::u16string field(length - 7, letter);
            std::u16string expected = u"$GPGGA," + field;
            // Of each character the low 8 bits count.
            const std::string digits =
                ChecksumDigits(std::string(expected.begin() + 1, expected.end()));
            if (length <= 252) expected += u'*' + Wide(digits);
            sentence->SetText("$GPGGA");
            sentence->SetField(1, {Narrowed(field), field});
            std::u16string text;
            AppendWide(text, sentence->TextAsGiven());
            EXPECT_EQ(text, expected.substr(0, 255)) << length;
            EXPECT_EQ(sentence->Field(1).size(), field.size());
        }
    }
}

TEST(NmeaSentence, AValueMayComeFromTheSentenceItself) {
    const auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText("$GPGGA,first,second");
    sentence->SetField(2, sentence->Field(1));
    sentence->SetField(3, sentence->Field(2));
    sentence->SetField(3, sentence->Field(3));
    sentence->SetCommand(sentence->Command());
    sentence->SetCommand(sentence->FullCommand());
    EXPECT_EQ(sentence->Text(), Sentence("GPGGA,first,first,first"));
}

}  // namespace
}  // namespace kavrel
