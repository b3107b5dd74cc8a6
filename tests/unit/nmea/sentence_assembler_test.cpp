#include "nmea/sentence_assembler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "unit/nmea/reference_assembler.h"
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

Texts Assembled(std::string_view text, bool isChecksumMandatory = false) {
    SentenceAssembler assembler;
    assembler.SetChecksumMandatory(isChecksumMandatory);
    assembler.Append(text);
    return TakeAll(assembler);
}

// The two examples that every description of NMEA 0183 prints, with their published checksums.
constexpr std::string_view kGga =
    "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47";
constexpr std::string_view kRmc =
    "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A";

TEST(SentenceAssembler, AcceptsPublishedChecksums) {
    const std::string text = std::string(kGga) + "\r\n" + std::string(kRmc) + "\r\n";
    EXPECT_THAT(Assembled(text, true), ElementsAre(kGga, kRmc));
}

TEST(SentenceAssembler, CutsAndChecks) {
    const struct {
        const char* why;
        std::string text;
        Texts expected;
    } kCases[] = {
        {"nothing", "", {}},
        {"no dollar", "GPGGA,1\r\n", {}},
        {"noise around", "xx\r\n\n" + Line("GPGGA,1") + "yy\r\n", {Sentence("GPGGA,1")}},
        {"no checksum", "$GPGGA,1\r\n", {"$GPGGA,1"}},
        {"wrong checksum", "$GPGGA,1*00\r\n" + Line("GPGGA,2"), {Sentence("GPGGA,2")}},
        {"upper case", "$GPGGA,1*4B\r\n", {"$GPGGA,1*4B"}},
        {"lower case", "$GPGGA,1*4b\r\n", {}},
        {"line feed alone", "$GPGGA,1\n", {}},
        {"line feed alone, then a sentence", "$GPGGA,1\n$GPGGA,2\r\n", {"$GPGGA,2"}},
        {"carriage return alone", "$GPGGA,1\r$GPGGA,2\r\n", {"$GPGGA,2"}},
        {"interrupted", "$GPGGA,1,$GPGGA,2\r\n", {"$GPGGA,2"}},
        {"dollars in a row", "$$$GPGGA,2\r\n", {"$GPGGA,2"}},
        {"interrupted by a damaged one", "$GPGGA,1$GPGGA,2*00\r\n", {}},
        {"damaged, its dollar far back", "$GPGGA*00\r\nGPGGA,2\r\n", {}},
        // A lone carriage return ends what is summed, and so hides the checksum behind it.
        {"carriage return inside", "$GPGGA,1\r,2*00\r\n", {"$GPGGA,1\r,2*00"}},
        {"two carriage returns", "$GPGGA,1\r\r\n", {"$GPGGA,1\r"}},
        {"text behind the checksum", "$GPGGA,1*4Bxyz\r\n", {"$GPGGA,1*4Bxyz"}},
        // Its value of (36 - 55) * 16 + 4 would fit, but a "$" opens a sentence wherever it stands.
        {"a dollar for a digit", "$A\x95*$4\r\n", {""}},
        {"a second star", "$GPGGA,1*4B*00\r\n", {"$GPGGA,1*4B*00"}},
        {"too short for a record", "$GPGG\r\n", {""}},
        {"dollar only", "$\r\n", {""}},
        {"zero inside", std::string("$GPGGA,\0,1\r\n", 12), {std::string("$GPGGA,\0,1", 10)}},
    };
    for (const auto& each : kCases)
        EXPECT_EQ(Assembled(each.text), each.expected) << each.why;
}

// With less than two characters behind the "*", the line end counts as digits: '\r' as 13 - 55 and
// '\n' as 10 - 55, by the rule that anything but a decimal digit counts from 'A' = 10.
TEST(SentenceAssembler, TakesTheLineEndForMissingDigits) {
    const struct {
        const char* digits;
        int value;
    } kCases[] = {
        {"", (13 - 55) * 16 + (10 - 55)},
        {"5", 5 * 16 + (13 - 55)},
        {"A", 10 * 16 + (13 - 55)},
        {"zz", ('z' - 55) * 16 + ('z' - 55)},
        {"\xFF", static_cast<unsigned char>((0xFF - 55) * 16 + (13 - 55))},
    };
    for (const auto& each : kCases) {
        // The last character makes the sum fit; the one before keeps it from one with a meaning.
        const auto fittingFor = [&each](std::string_view address) {
            int sum = each.value & 0xFF;
            for (const char c : address)
                sum ^= c;
            return static_cast<char>(sum & 0xFF);
        };
        std::string address = "PXXXX,A";
        while (std::string_view("$*\r").find(fittingFor(address)) != std::string_view::npos) {
            ++address.back();
        }
        const char fitting = fittingFor(address);
        const std::string text = "$" + address + fitting + "*" + each.digits;
        EXPECT_THAT(Assembled(text + "\r\n"), ElementsAre(text)) << each.digits;

        const char unfitting = static_cast<char>(fitting ^ 0x80);
        const std::string other = "$" + address + unfitting + "*" + each.digits;
        EXPECT_THAT(Assembled(other + "\r\n"), IsEmpty()) << each.digits;
    }
}

TEST(SentenceAssembler, ChecksumMayBeMandatory) {
    const std::string text = "$GPGGA,1\r\n" + Line("GPGGA,2") + "$GPGGA,3\r*4B\r\n";
    EXPECT_THAT(Assembled(text, false),
                ElementsAre("$GPGGA,1", Sentence("GPGGA,2"), "$GPGGA,3\r*4B"));
    EXPECT_THAT(Assembled(text, true), ElementsAre(Sentence("GPGGA,2")));
}

TEST(SentenceAssembler, AppendTellsOfLineFeeds) {
    SentenceAssembler assembler;
    EXPECT_FALSE(assembler.Append(""));
    EXPECT_FALSE(assembler.Append("$GPGGA,1\r"));
    EXPECT_TRUE(assembler.Append("\n"));
    EXPECT_TRUE(assembler.Append("\nx"));
    // Also of one that the ring does not hold any more.
    EXPECT_TRUE(assembler.Append("\n" + std::string(5000, 'x')));
}

// A day of a quick receiver is a gigabyte. Sanitized builds, which take ten times as long, see a
// sixteenth of it.
TEST(SentenceAssembler, NeverLosesItsPlace) {
#ifdef NDEBUG
    constexpr std::size_t kTotal = std::size_t{1} << 30;
#else
    constexpr std::size_t kTotal = std::size_t{1} << 26;
#endif
    constexpr std::size_t kPiece = 61;
    std::string text;
    constexpr int kSentences = 37;
    for (int i = 0; i < kSentences; ++i)
        text += Line("GPXXX," + std::string(static_cast<std::size_t>(i * 3), 'x'));

    SentenceAssembler assembler;
    std::size_t found = 0;
    for (std::size_t fed = 0; fed < kTotal / text.size(); ++fed) {
        for (std::size_t at = 0; at < text.size(); at += kPiece) {
            assembler.Append(std::string_view(text).substr(at, kPiece));
            while (assembler.HasSentence())
                ++found;
        }
    }
    EXPECT_EQ(found, kTotal / text.size() * kSentences);
}

TEST(SentenceAssembler, HoldsASentenceAsLongAsTheRing) {
    for (std::size_t offset = 0; offset < 512; offset += 73) {
        SentenceAssembler assembler;
        assembler.Append(std::string(offset, 'x'));
        EXPECT_FALSE(assembler.HasSentence());
        const std::string longest = "$PLONG," + std::string(503, 'y');
        assembler.Append(longest + "\r\n");
        EXPECT_THAT(TakeAll(assembler), ElementsAre(longest)) << offset;

        assembler.Append("$PLONG," + std::string(504, 'y') + "\r\n");
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

std::string RandomChunk(std::mt19937_64& random) {
    static const std::string_view kPieces[] = {"$", "*",           "\r",  "\n",    "\r\n",
                                               ",", "GPGGA",       "4B",  "\r\n$", "$GP",
                                               "x", "$PABC,1\r\n", "\xB7"};
    std::string chunk;
    const std::size_t pieces = random() % 12;
    for (std::size_t i = 0; i < pieces; ++i) {
        switch (random() % 8) {
            case 0:
                chunk += Line("GPTXT," + std::to_string(random() % 100000));
                break;
            case 1:
                chunk += std::string(random() % 80, 'z');
                break;
            default:
                chunk += kPieces[random() % std::size(kPieces)];
        }
    }
    if (random() % 64 == 0) chunk += std::string(random() % 70000, 'q');
    return chunk;
}

TEST(SentenceAssembler, AgreesWithTheRules) {
    for (std::uint64_t seed = 1; seed <= 4; ++seed) {
        std::mt19937_64 random(seed);
        SentenceAssembler assembler;
        ReferenceAssembler reference;
        std::size_t found = 0;
        for (int round = 0; round < 20000; ++round) {
            const std::string chunk = RandomChunk(random);
            assembler.Append(chunk);
            reference.Append(chunk);
            if (random() % 16 == 0) {
                const bool isMandatory = random() % 2 != 0;
                assembler.SetChecksumMandatory(isMandatory);
                reference.SetChecksumMandatory(isMandatory);
            }
            // Sometimes text is left waiting.
            for (std::size_t takes = random() % 6; takes > 0; --takes) {
                const std::optional<std::string> expected = reference.Next();
                ASSERT_EQ(assembler.HasSentence(), expected.has_value()) << seed << ' ' << round;
                if (!expected) continue;
                ++found;
                ASSERT_EQ(assembler.TakeSentence()->Text(), expected->size() < 6 ? "" : *expected);
            }
        }
        EXPECT_GT(found, 10000u);
    }
}

}  // namespace
}  // namespace kavrel
