// NmeaSentence as clients hold it: reading, changing and rebuilding through variants.
#include <gtest/gtest.h>

#include <string>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

class SentenceTest : public AutomationTest {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        sentence_ = MakeSentence(L"$GPXXX,a,b");
        ASSERT_TRUE(sentence_);
    }
    void TearDown() override {
        sentence_.Reset();
        AutomationTest::TearDown();
    }

    IDispatch* sentence() { return sentence_.Get(); }
    std::string Read(const wchar_t* name) { return Describe(Get(sentence(), name).value); }
    std::string Field(const Var& index) {
        return Describe(Call(sentence(), L"Fields", {index}).value);
    }
    std::wstring Text() { return Get(sentence(), L"Sentence").value.text(); }
    void SetField(const Var& index, const Var& value) {
        EXPECT_EQ(S_OK, Call(sentence(), L"SetField", {index, value}).status);
    }
    void PutText(const Var& text) { EXPECT_EQ(S_OK, Put(sentence(), L"Sentence", text).status); }

  private:
    ComPtr<IDispatch> sentence_;
};

TEST_F(SentenceTest, ResultsHaveFixedTypes) {
    EXPECT_EQ("BSTR '$GPXXX,a,b'", Read(L"Sentence"));
    EXPECT_EQ("I4 2", Read(L"FieldsCount"));
    EXPECT_EQ("BSTR 'XXX'", Read(L"Command"));
    EXPECT_EQ("BSTR 'GPXXX'", Read(L"FullCommand"));
    EXPECT_EQ("BSTR 'b'", Field(2));
}

TEST_F(SentenceTest, TextIsReplacedWhole) {
    PutText(L"$PGRME,1,,3*00");
    EXPECT_EQ("BSTR '$PGRME,1,,3*00'", Read(L"Sentence")) << "kept as it is, checksum and all";
    EXPECT_EQ("I4 3", Read(L"FieldsCount"));
    EXPECT_EQ("BSTR 'RME'", Read(L"Command"));
    EXPECT_EQ("BSTR ''", Field(2));
    EXPECT_EQ("BSTR '3'", Field(3));
}

TEST_F(SentenceTest, ShortTextLeavesNothing) {
    for (const Var& text : {Var(L"$GPGG"), Var(L""), Var::Of(VT_BSTR), Var::Missing(),
                            Var::Of(VT_NULL), Var(12345)}) {
        PutText(L"$GPXXX,a");
        PutText(text);
        EXPECT_EQ("I4 0", Read(L"FieldsCount")) << Describe(text);
        EXPECT_EQ(L"", Text());
        EXPECT_EQ(L"", Get(sentence(), L"Command").value.text());
        EXPECT_EQ(L"", Get(sentence(), L"FullCommand").value.text());
    }
    PutText(L"$GPGGA");
    EXPECT_EQ("BSTR 'GGA'", Read(L"Command")) << "six characters are enough";
}

TEST_F(SentenceTest, FieldsAreAddedWithEmptyOnesBetween) {
    SetField(5, L"x");
    EXPECT_EQ("I4 5", Read(L"FieldsCount"));
    EXPECT_EQ("BSTR ''", Field(3));
    EXPECT_EQ("BSTR '$GPXXX,a,b,,,x*18'", Read(L"Sentence"));
    SetField(L"2", 7);
    EXPECT_EQ("BSTR '7'", Field(2)) << "numbers are texts, and texts are numbers";
}

// The argument has 16 bits, and what does not fit is 0: stored, but no field of the text.
TEST_F(SentenceTest, FieldNumbersBeyondSixteenBitsAreNothing) {
    for (const Var& index : {Var(100000), Var(-1), Var(L"x"), Var::Missing()}) {
        SetField(index, L"lost");
        EXPECT_EQ("I4 2", Read(L"FieldsCount"));
        EXPECT_EQ(Finished(L"$GPXXX,a,b"), Text() + L"\r\n");
    }
}

TEST_F(SentenceTest, LargestFieldNumberIsKept) {
    SetField(32767, L"x");
    EXPECT_EQ("I4 32767", Read(L"FieldsCount"));
    EXPECT_EQ(L"$GPXXX,a,b" + std::wstring(245, L','), Text()) << "cut at 255 characters";
    EXPECT_EQ("BSTR ''", Field(127));
    // Reading takes only 8 bits of the number, with their sign.
    EXPECT_EQ(static_cast<HRESULT>(0x80042714), Call(sentence(), L"Fields", {128}).failure);
    EXPECT_EQ("BSTR 'a'", Field(257));
}

TEST_F(SentenceTest, LongFieldIsKeptButItsTextIsCut) {
    const std::wstring field(300, L'y');
    SetField(1, Var(field));
    EXPECT_EQ(field, Call(sentence(), L"Fields", {1}).value.text());
    EXPECT_EQ(L"$GPXXX," + std::wstring(248, L'y'), Text()) << "no room for a checksum";
}

// A checksum is written only where it ends before the 255th character.
TEST_F(SentenceTest, ChecksumNeedsItsRoom) {
    PutText(L"$GPXXX,");
    const size_t frame = 7;
    SetField(1, Var(std::wstring(252 - frame, L'y')));
    EXPECT_EQ(255U, Text().size());
    EXPECT_EQ(L'*', Text()[252]);
    SetField(1, Var(std::wstring(253 - frame, L'y')));
    EXPECT_EQ(253U, Text().size());
}

TEST_F(SentenceTest, EmbeddedZerosAreCharacters) {
    const std::wstring text(L"a\0b", 3);
    SetField(1, Var(text));
    EXPECT_EQ(text, Call(sentence(), L"Fields", {1}).value.text());
    EXPECT_EQ(std::wstring(L"$GPXXX,a\0b,b", 12), Text().substr(0, 12));
}

// U+012C, cut to 8 bits, would be a comma.
TEST_F(SentenceTest, CharactersKeepAllTheirBits) {
    const std::wstring text =
        L"$G\x141XXX,a\x12C"
        L"b,\xE9*00";
    PutText(Var(text));
    EXPECT_EQ(text, Text());
    EXPECT_EQ("I4 2", Read(L"FieldsCount"));
    EXPECT_EQ(
        L"a\x12C"
        L"b",
        Call(sentence(), L"Fields", {1}).value.text());
    EXPECT_EQ(L"\xE9", Call(sentence(), L"Fields", {2}).value.text());
    EXPECT_EQ(L"G\x141XXX", Get(sentence(), L"FullCommand").value.text());

    SetField(2, Var(std::wstring(L"\x20AC")));
    EXPECT_EQ(S_OK, Put(sentence(), L"Command", L"Y\x142Y").status);
    EXPECT_EQ(L"Y\x142Y", Get(sentence(), L"Command").value.text());
    EXPECT_EQ(Finished(L"$GPY\x142Y,a\x12C"
                       L"b,\x20AC"),
              Text() + L"\r\n");
}

TEST_F(SentenceTest, CommandsSetTalkerAndFormatter) {
    const struct {
        const wchar_t* member;
        const wchar_t* value;
        const char* command;
        const char* fullCommand;
    } cases[] = {
        {L"Command", L"RMC", "BSTR 'RMC'", "BSTR 'GPRMC'"},
        {L"Command", L"PGRME", "BSTR 'RME'", "BSTR 'PGRME'"},
        {L"FullCommand", L"GNGGA", "BSTR 'GGA'", "BSTR 'GNGGA'"},
        {L"FullCommand", L"GLL", "BSTR 'GLL'", "BSTR 'GPGLL'"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(S_OK, Put(sentence(), test.member, test.value).status);
        EXPECT_EQ(test.command, Read(L"Command"));
        EXPECT_EQ(test.fullCommand, Read(L"FullCommand"));
        EXPECT_EQ("BSTR 'b'", Field(2)) << "the fields stay";
    }
    EXPECT_EQ(Finished(L"$GPGLL,a,b"), Text() + L"\r\n");
}

}  // namespace

}  // namespace kavrel::tests
