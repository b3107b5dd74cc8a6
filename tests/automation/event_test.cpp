// Text in, events out: what Parse makes of sentences, whole, in pieces, and faulty.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using Texts = std::vector<std::wstring>;

class EventTest : public AutomationTest {
  protected:
    void SetUp() override {
        AutomationTest::SetUp();
        parser_ = CreateParser();
        ASSERT_TRUE(parser_);
    }
    void TearDown() override {
        parser_.Reset();
        AutomationTest::TearDown();
    }

    IDispatch* parser() { return parser_.Get(); }
    HRESULT Parse(const std::wstring& text) {
        return Call(parser_.Get(), L"Parse", {Var(text)}).status;
    }

  private:
    ComPtr<IDispatch> parser_;
};

// One way of feeding text, and the sentences that come of it.
struct ParseCase {
    const char* name;
    std::vector<std::wstring> pieces;
    Texts sentences;
    bool checksumMandatory = false;
};

void PrintTo(const ParseCase& test, std::ostream* out) {
    *out << test.name;
}

// The checksums are worked out apart from the library, by a few lines of Python.
const ParseCase kParseCases[] = {
    {"nothing", {L""}, {}},
    {"one", {L"$GPXXX,a\r\n"}, {L"$GPXXX,a"}},
    {"in halves", {L"$GPXX", L"X,a\r\n"}, {L"$GPXXX,a"}},
    {"line end in halves", {L"$GPXXX,a\r", L"\n"}, {L"$GPXXX,a"}},
    {"character by character",
     {L"$", L"G", L"P", L"X", L"X", L"X", L",", L"\r", L"\n"},
     {L"$GPXXX,"}},
    {"two at once", {L"$GPXXX,1\r\n$GPXXX,2\r\n"}, {L"$GPXXX,1", L"$GPXXX,2"}},
    {"rest kept for later", {L"$GPXXX,1\r\n$GPX", L"XX,2\r\n"}, {L"$GPXXX,1", L"$GPXXX,2"}},
    {"noise around", {L"noise\r\n\n$GPXXX,1\r\nnoise$GPXXX,2\r\n"}, {L"$GPXXX,1", L"$GPXXX,2"}},
    {"interrupted", {L"$GPXXX,1,$GPXXX,2\r\n"}, {L"$GPXXX,2"}},
    {"interrupted later", {L"$GPXXX,1", L"$GPXXX,2\r\n"}, {L"$GPXXX,2"}},
    {"line feed alone", {L"$GPXXX,1\n"}, {}},
    {"line feed alone, then a whole line", {L"$GPXXX,1\n", L"$GPXXX,2\r\n"}, {L"$GPXXX,2"}},
    {"line feed inside", {L"$GPXXX,1\n2\r\n"}, {L"$GPXXX,1\n2"}},
    {"return alone", {L"$GPXXX,1\r$GPXXX,2\r\n"}, {L"$GPXXX,2"}},
    {"good checksum", {L"$GPRMX*50\r\n"}, {L"$GPRMX*50"}},
    {"wrong checksum", {L"$GPRMX*51\r\n$GPXXX\r\n"}, {L"$GPXXX"}},
    {"checksum with a letter", {L"$GPTXT,N*2D\r\n"}, {L"$GPTXT,N*2D"}},
    {"the same in lower case", {L"$GPTXT,N*2d\r\n"}, {}},
    {"checksum cut short", {L"$GPRMX*5\r\n$GPXXX\r\n"}, {L"$GPXXX"}},
    {"no checksum where it must be", {L"$GPXXX,1\r\n$GPRMX*50\r\n"}, {L"$GPRMX*50"}, true},
    {"any talker, proprietary", {L"$PGRME,1\r\n$GNXXX\r\n"}, {L"$PGRME,1", L"$GNXXX"}},
    {"very short", {L"$GPX\r\n"}, {L""}},
    {"only a dollar sign", {L"$\r\n"}, {L""}},
    {"beyond ASCII", {L"$GPXXX,\xE9\r\n"}, {L"$GPXXX,\xE9"}},
};

class ParseTest : public EventTest, public testing::WithParamInterface<ParseCase> {};

INSTANTIATE_TEST_SUITE_P(All, ParseTest, testing::ValuesIn(kParseCases));

TEST_P(ParseTest, RaisesGenericForEverySentence) {
    const Listener listener(parser());
    if (GetParam().checksumMandatory) {
        EXPECT_EQ(S_OK, Put(parser(), L"ChecksumMandatory", true).status);
    }
    for (const std::wstring& piece : GetParam().pieces)
        EXPECT_EQ(S_OK, Parse(piece));
    EXPECT_EQ(GetParam().sentences, listener->texts());
}

TEST_F(EventTest, ChecksumMandatoryChangesAtAnyTime) {
    const Listener listener(parser());
    Parse(L"$GPXXX,1\r\n");
    Put(parser(), L"ChecksumMandatory", true);
    Parse(L"$GPXXX,2\r\n" + Finished(L"$GPXXX,3"));
    Put(parser(), L"ChecksumMandatory", false);
    Parse(L"$GPXXX,4\r\n");
    const std::wstring third = Finished(L"$GPXXX,3");
    EXPECT_EQ((Texts{L"$GPXXX,1", third.substr(0, third.size() - 2), L"$GPXXX,4"}),
              listener->texts());
}

TEST_F(EventTest, UnknownSentenceRaisesOnlyGeneric) {
    const Listener listener(parser());
    Parse(L"$PGRME,15.0,M,45.0,M,25.0,M\r\n");
    ASSERT_EQ(1U, listener->events().size());
    EXPECT_EQ(kGeneric, listener->events()[0].id);
    ASSERT_EQ(1U, listener->events()[0].arguments.size());
    EXPECT_EQ("DISPATCH object", Describe(listener->events()[0].arguments[0]));
}

const wchar_t* const kKnownSentences[] = {
    L"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",
    L"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W",
    L"$GPGLL,4807.038,N,01131.000,E,123519,A",
    L"$GPVTG,084.4,T,077.8,M,022.4,N,041.5,K",
    L"$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1",
    L"$GPGSV,1,1,02,01,40,083,46,02,17,308,41",
};

// Whatever else a sentence causes comes before its Generic.
TEST_F(EventTest, GenericIsTheLastOfASentence) {
    for (const wchar_t* text : kKnownSentences) {
        SCOPED_TRACE(Narrow(text));
        const Listener listener(parser());
        Parse(std::wstring(text) + L"\r\n");
        ASSERT_FALSE(listener->events().empty());
        EXPECT_EQ(kGeneric, listener->events().back().id);
        EXPECT_EQ(Texts{text}, listener->texts());
    }
}

TEST_F(EventTest, AllEventsGenericLeavesOnlyGeneric) {
    const Listener listener(parser());
    EXPECT_EQ(S_OK, Put(parser(), L"AllEventsGeneric", true).status);
    for (const wchar_t* text : kKnownSentences)
        Parse(std::wstring(text) + L"\r\n");
    EXPECT_EQ(std::size(kKnownSentences), listener->events().size());
    for (const RecordedEvent& event : listener->events())
        EXPECT_EQ(kGeneric, event.id);
}

TEST_F(EventTest, NoEventsSilencesThem) {
    const Listener listener(parser());
    EXPECT_EQ(S_OK, Put(parser(), L"NoEvents", true).status);
    for (const wchar_t* text : kKnownSentences)
        Parse(std::wstring(text) + L"\r\n");
    EXPECT_TRUE(listener->events().empty());
    EXPECT_EQ(S_OK, Put(parser(), L"NoEvents", false).status);
    Parse(L"$GPXXX\r\n");
    EXPECT_EQ(Texts{L"$GPXXX"}, listener->texts());
}

TEST_F(EventTest, SettingsTakeTheirWholeRange) {
    for (int datum = 1; datum <= 28; ++datum) {
        EXPECT_EQ(S_OK, Put(parser(), L"GpsDatum", datum).status) << datum;
    }
    for (const int port : {-1, 0, 1, 255}) {
        EXPECT_EQ(S_OK, Put(parser(), L"ComPort", port).status) << port;
    }
    for (const int rate : {0, 4800, 115200, -1}) {
        EXPECT_EQ(S_OK, Put(parser(), L"BaudRate", rate).status) << rate;
    }
    for (const int type : {5, 6, 7, 8}) {
        for (const int interval : {0, -7, 500, 2147483647}) {
            EXPECT_EQ(S_OK, Call(parser(), L"EventInterval", {interval, type}).status);
        }
    }
}

// Numbered sentences of 32 characters each, line end included.
std::wstring Numbered(int number) {
    std::wstring digits = std::to_wstring(number);
    digits.insert(0, 9 - digits.size(), L'0');
    return L"$GPXXX,0123456789abc," + digits + L"\r\n";
}

// More text than the ring holds overwrites the oldest: the last 512 characters are left.
TEST_F(EventTest, OneHugeTextKeepsItsEnd) {
    constexpr int kCount = 32768;  // 1 MB
    constexpr int kKept = 512 / 32;
    std::wstring text;
    for (int i = 0; i < kCount; ++i)
        text += Numbered(i);
    ASSERT_EQ(size_t{1} << 20, text.size());

    const Listener listener(parser());
    EXPECT_EQ(S_OK, Parse(text));
    Texts expected;
    for (int i = kCount - kKept; i < kCount; ++i) {
        expected.push_back(Numbered(i).substr(0, 30));
    }
    EXPECT_EQ(expected, listener->texts());
    listener->Clear();
    Parse(L"$GPXXX,afterwards\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,afterwards"}, listener->texts());
}

TEST_F(EventTest, ExactlyOneRingFullIsKept) {
    std::wstring text;
    for (int i = 0; i < 16; ++i)
        text += Numbered(i);
    ASSERT_EQ(512U, text.size());
    const Listener listener(parser());
    Parse(L"$");  // moves the ring's seam into the text, and is the one that is lost
    Parse(text);
    EXPECT_EQ(16U, listener->texts().size());
}

// The ring's positions are 16-bit numbers: they wrap many times over here.
TEST_F(EventTest, LongStreamInSmallPiecesIsComplete) {
    constexpr int kCount = 12000;  // 384000 characters
    const Listener listener(parser());
    std::wstring stream;
    for (int i = 0; i < kCount; ++i)
        stream += Numbered(i);
    for (size_t at = 0, piece = 1; at < stream.size(); at += piece, piece = piece % 97 + 1) {
        Parse(stream.substr(at, piece));
    }
    const Texts texts = listener->texts();
    ASSERT_EQ(static_cast<size_t>(kCount), texts.size());
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(Numbered(i).substr(0, 30), texts[static_cast<size_t>(i)]);
    }
}

TEST_F(EventTest, UnfinishedTextLongerThanTheRingIsLost) {
    const Listener listener(parser());
    Parse(L"$GPXXX," + std::wstring(600, L'a'));
    Parse(L"\r\n");
    EXPECT_TRUE(listener->events().empty()) << "its dollar sign is overwritten";
    Parse(L"$GPXXX,1\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,1"}, listener->texts());

    listener->Clear();
    for (int i = 0; i < 100; ++i)
        Parse(L"0123456789");
    Parse(L"$GPXXX,2\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,2"}, listener->texts());
}

TEST_F(EventTest, LongestSentenceFillsTheRing) {
    const Listener listener(parser());
    const std::wstring longest = L"$GPXXX," + std::wstring(512 - 9, L'a');
    Parse(longest + L"\r\n");
    EXPECT_EQ(Texts{longest}, listener->texts());
    listener->Clear();
    Parse(longest + L"a\r\n");
    EXPECT_TRUE(listener->events().empty());
}

TEST_F(EventTest, EmbeddedZerosDoNoHarm) {
    const Listener listener(parser());
    Parse(std::wstring(L"\0\0$GPXXX,a\0b,c\r\n\0", 18));
    EXPECT_EQ(1U, listener->events().size());
    Parse(L"$GPXXX,1\r\n");
    ASSERT_EQ(2U, listener->events().size());
    EXPECT_EQ(L"$GPXXX,1", listener->events()[1].text);
}

TEST_F(EventTest, WhatIsNoTextIsNoSentence) {
    const Listener listener(parser());
    EXPECT_EQ(S_OK, Call(parser(), L"Parse").status);
    for (const Var& value : {Var::Missing(), Var::Of(VT_NULL), Var(), Var(5), Var(3.7),
                             Var::Of(VT_BSTR), Var(parser())}) {
        EXPECT_EQ(S_OK, Call(parser(), L"Parse", {value}).status);
    }
    EXPECT_TRUE(listener->events().empty());
}

TEST_F(EventTest, ParserWithoutListenersParsesAllTheSame) {
    EXPECT_EQ(S_OK, Parse(L"$GPXXX,1\r\n$GPXXX,2"));
    const Listener listener(parser());
    Parse(L",b\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,2,b"}, listener->texts());
}

TEST_F(EventTest, ParsersAreIndependent) {
    const ComPtr<IDispatch> other = CreateParser();
    const Listener listener(parser());
    const Listener otherListener(other.Get());
    Parse(L"$GPXXX,1");
    Call(other.Get(), L"Parse", {L"$GPXXX,2\r\n"});
    Put(other.Get(), L"ChecksumMandatory", true);
    Parse(L"\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,1"}, listener->texts());
    EXPECT_EQ(Texts{L"$GPXXX,2"}, otherListener->texts());
}

// What an event hands out is shared: who changes it changes what the later listeners see.
TEST_F(EventTest, ListenersShareTheSentence) {
    const Listener first(parser());
    const Listener second(parser());
    first->SetReaction([](const RecordedEvent& event) {
        return Call(event.arguments[0].object(), L"SetField", {1, L"changed"}).status;
    });
    Parse(L"$GPXXX,a\r\n");
    EXPECT_EQ(Texts{L"$GPXXX,a"}, first->texts());
    ASSERT_EQ(1U, second->texts().size());
    EXPECT_EQ(L"$GPXXX,changed", second->texts()[0].substr(0, 14));
}

}  // namespace

}  // namespace kavrel::tests
