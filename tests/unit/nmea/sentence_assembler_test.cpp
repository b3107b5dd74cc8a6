#include "nmea/sentence_assembler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "table.h"
#include "unit/nmea/sentence_text.h"

namespace kavrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

Texts TakeAll(SentenceAssembler& assembler) {
    Texts texts;
    while (assembler.HasSentence())
        texts.emplace_back(assembler.TakeSentence()->Text());
    return texts;
}

TEST(SentenceAssembler, CutsAndChecks) {
    ForEachRow("nmea/cutting.csv", [](const Row& row) {
        SentenceAssembler assembler;
        assembler.SetChecksumMandatory(row.Flag(1));
        assembler.Append(row.Text(2));
        EXPECT_EQ(TakeAll(assembler), row.From(3));
        // The same in pieces of one character, behind whatever was left waiting.
        assembler.Append("\r\n");
        TakeAll(assembler);
        Texts texts;
        for (const char c : row.Text(2)) {
            assembler.Append({&c, 1});
            for (std::string& text : TakeAll(assembler))
                texts.push_back(std::move(text));
        }
        EXPECT_EQ(texts, row.From(3));
    });
}

// A day of a quick receiver is a gigabyte. Sanitized builds, which take ten times as long, see a
// sixteenth of it.
TEST(SentenceAssembler, NeverLosesItsPlace) {
#ifdef NDEBUG
    constexpr std::size_t kTotal = std::size_t{1} << 30;
#else
    constexpr std::size_t kTotal = std::size_t{1} << 26;
#endif
    constexpr std::size_t kSentences = 37;
    std::string text;
    for (std::size_t i = 0; i < kSentences; ++i)
        text += Line("GPXXX," + std::string(i * 3, 'x'));

    SentenceAssembler assembler;
    std::size_t found = 0;
    const std::size_t rounds = kTotal / text.size();
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t at = 0; at < text.size(); at += 61) {
            assembler.Append(std::string_view(text).substr(at, 61));
            while (assembler.HasSentence())
                ++found;
        }
    }
    EXPECT_EQ(found, rounds * kSentences);
}

TEST(SentenceAssembler, HoldsASentenceAsLongAsTheRing) {
    for (std::size_t offset = 0; offset < 512; offset += 73) {
        SentenceAssembler assembler;
        assembler.Append(std::string(offset, 'x'));
        const std::string longest = "$PLONG," + std::string(503, 'y');
        assembler.Append(longest + "\r\n");
        EXPECT_THAT(TakeAll(assembler), ElementsAre(longest)) << offset;

        // One more is too many, in one piece or several.
        assembler.Append(longest + "y\r\n");
        EXPECT_THAT(TakeAll(assembler), IsEmpty()) << offset;
        assembler.Append(longest);
        assembler.Append("y\r\n");
        EXPECT_THAT(TakeAll(assembler), IsEmpty()) << offset;
        assembler.Append("$GPGGA,1\r\n");
        EXPECT_THAT(TakeAll(assembler), ElementsAre("$GPGGA,1")) << offset;
    }
}

TEST(SentenceAssembler, ATextOf65536IsNoEmptyText) {
    SentenceAssembler assembler;
    assembler.Append(std::string(65536 - 10, 'x') + "$GPGGA,1\r\n");
    EXPECT_THAT(TakeAll(assembler), ElementsAre("$GPGGA,1"));
}

TEST(SentenceAssembler, ClearDropsWhatWaits) {
    SentenceAssembler assembler;
    assembler.Append("$GPGGA,1");
    assembler.Clear();
    assembler.Append("2\r\n");
    EXPECT_THAT(TakeAll(assembler), IsEmpty());
}

TEST(SentenceAssembler, UsesASentenceAgainThatNobodyKeeps) {
    SentenceAssembler assembler;
    const auto take = [&assembler](std::string_view body) {
        assembler.Append(Line(body));
        EXPECT_TRUE(assembler.HasSentence());
        return assembler.TakeSentence();
    };
    Ref<NmeaSentence> first = take("GPGGA,1");
    NmeaSentence* const record = first.get();
    first->SetField(1, "changed");
    assembler.GiveBack(std::move(first));
    Ref<NmeaSentence> second = take("GPRMC,1,2");
    EXPECT_EQ(second.get(), record);
    EXPECT_EQ(second->Text(), Sentence("GPRMC,1,2"));
    EXPECT_EQ(second->Field(1), "1");

    const Ref<NmeaSentence> kept = second;
    assembler.GiveBack(std::move(second));
    EXPECT_NE(take("GPGLL,1").get(), record);
    EXPECT_EQ(kept->Text(), Sentence("GPRMC,1,2"));
}

}  // namespace
}  // namespace kavrel
