// Text in, events out: what of it depends on how a client hands text over. The rules of sentences
// are those of the assembler and of the parser, which have tests of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::SizeIs;

namespace kavrel::tests {

namespace {

using namespace std::string_literals;
using EventTest = ParserTest;

TEST_F(EventTest, TextComesInPieces) {
    const struct {
        std::vector<std::wstring> pieces;
        std::vector<std::wstring> sentences;
    } cases[] = {
        {{L""}, {}},
        {{L"$GPXX", L"X,a\r", L"\n"}, {L"$GPXXX,a"}},
        {{L"$GPXXX,1\r\n$GPX", L"XX,2\r\n"}, {L"$GPXXX,1", L"$GPXXX,2"}},
        {{L"$PGRME,1\r\n$GNXXX\r\n"}, {L"$PGRME,1", L"$GNXXX"}},
        {{L"$GPRMX*50\r\n$GPRMX*51\r\n"}, {L"$GPRMX*50"}},
        {{L"$GPXXX,\xE9\r\n"}, {L"$GPXXX,\xE9"}},
        {{L"\0\0$GPXXX,a\0b,c\r\n\0"s, L"$GPXXX,2\r\n"}, {L"$GPXXX,a\0b,c"s, L"$GPXXX,2"}},
    };
    for (const auto& test : cases) {
        const Listener listener(parser_.Get());
        for (const std::wstring& piece : test.pieces)
            Parse(piece);
        EXPECT_EQ(test.sentences, listener->texts());
    }
}

TEST_F(EventTest, SettingsDecideWhatIsRaised) {
    const Listener listener(parser_.Get());
    const std::wstring fix = L"$GPGLL,4807.038,N,01131.000,E,123519,A\r\n";
    Parse(fix);
    EXPECT_THAT(listener->events(), SizeIs(testing::Gt(1U)));
    listener->Clear();
    for (const wchar_t* setting : {L"AllEventsGeneric", L"ChecksumMandatory", L"NoEvents"}) {
        Put(parser_.Get(), setting, true);
        Parse(fix + Finished(L"$GPXXX,1"));
    }
    ASSERT_THAT(listener->events(), SizeIs(3));
    EXPECT_EQ(kGeneric, listener->events()[0].id);
    EXPECT_EQ(L"$GPXXX,1", listener->events()[1].text.substr(0, 8));
    EXPECT_EQ(L"$GPXXX,1", listener->events()[2].text.substr(0, 8));
}

// More text than the parser keeps overwrites the oldest.
TEST_F(EventTest, OneHugeTextKeepsItsEnd) {
    const Listener listener(parser_.Get());
    Parse(std::wstring(size_t{1} << 20, L'x') + L"$GPXXX,last\r\n");
    EXPECT_THAT(listener->texts(), ElementsAre(L"$GPXXX,last"));
}

// What an event hands out is shared: who changes it changes what the later listeners see.
TEST_F(EventTest, ListenersShareTheSentence) {
    const Listener first(parser_.Get());
    const Listener second(parser_.Get());
    first->SetReaction([](const RecordedEvent& event) {
        return Call(event.arguments[0].object(), L"SetField", {1, L"changed"}).status;
    });
    Parse(L"$GPXXX,a\r\n");
    EXPECT_THAT(first->texts(), ElementsAre(L"$GPXXX,a"));
    EXPECT_THAT(second->texts(), ElementsAre(testing::StartsWith(L"$GPXXX,changed")));
}

}  // namespace

}  // namespace kavrel::tests
