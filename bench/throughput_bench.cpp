// What a sentence costs on its way from bytes to snapshots and events.
//
// 10 MB of a simulated receiver's text go through a parser in blocks of 256 bytes, as a serial port
// delivers them. The floor, measured in the same run, does only what nobody can avoid: it frames
// the lines, checks their checksums and finds their commas. Every counter is per sentence;
// `xFloor` is the time in floors.
#include <benchmark/benchmark.h>
#include <time.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "allocation_count.h"
#include "nmea/checksum.h"
#include "parser/nmea_parser.h"
#include "receiver.h"
#include "results/decoded_sentence.h"

namespace kavrel {
namespace {

constexpr std::size_t kTextSize = 10'000'000;
constexpr std::size_t kBlockSize = 256;

double floorNs = 0.0;

const std::string& Text(int constellations) {
    static const std::array<std::string, 5> texts = [] {
        std::array<std::string, 5> result;
        for (const int n : {1, 4}) {
            simulator::Options options;
            options.constellations = n;
            options.hasSignalIds = n > 1;
            simulator::Receiver receiver(options);
            std::string& text = result[static_cast<std::size_t>(n)];
            while (text.size() < kTextSize)
                text += receiver.NextEpoch();
        }
        return result;
    }();
    return texts[static_cast<std::size_t>(constellations)];
}

template <typename F>
void ForEachBlock(std::string_view text, const F& use) {
    for (std::size_t at = 0; at < text.size(); at += kBlockSize)
        use(text.substr(at, kBlockSize));
}

// Frames lines, checks checksums, finds commas; keeps nothing.
class Floor {
  public:
    void Feed(std::string_view block) {
        std::memcpy(buffer_ + size_, block.data(), block.size());
        size_ += block.size();
        const char* line = buffer_;
        const char* const end = buffer_ + size_;
        while (const void* found = std::memchr(line, '\n', static_cast<std::size_t>(end - line))) {
            const char* const lineEnd = static_cast<const char*>(found);
            Examine(line, lineEnd);
            line = lineEnd + 1;
        }
        size_ = static_cast<std::size_t>(end - line);
        std::memmove(buffer_, line, size_);
    }
    std::int64_t sentences() const { return sentences_; }
    std::int64_t commas() const { return commas_; }

  private:
    void Examine(const char* at, const char* end) {
        Checksum checksum;
        std::array<const char*, 32> commas;
        std::size_t count = 0;
        for (++at; at != end && *at != '*'; ++at) {
            checksum.Add(*at);
            if (*at == ',' && count < commas.size()) commas[count++] = at;
        }
        if (end - at < 3 || !checksum.Matches(at[1], at[2])) return;
        benchmark::DoNotOptimize(commas);
        commas_ += static_cast<std::int64_t>(count);
        ++sentences_;
    }

    char buffer_[4 * kBlockSize];
    std::size_t size_ = 0;
    std::int64_t sentences_ = 0;
    std::int64_t commas_ = 0;
};

struct Counts {
    std::array<std::int64_t, static_cast<std::size_t>(ParserEvent::Count)> events{};
    double sum = 0.0;
};

void CountEvent(void* context, ParserEvent event, Record&) {
    ++static_cast<Counts*>(context)->events[static_cast<std::size_t>(event)];
}

double Sum(Position& position) {
    return position.LatitudeRads() + position.LongitudeRads() + position.Altitude(0);
}

// A client that reads what it gets.
void ReadEvent(void* context, ParserEvent event, Record& object) {
    CountEvent(context, event, object);
    double& sum = static_cast<Counts*>(context)->sum;
    if (event == ParserEvent::GpsFix) {
        auto& fix = static_cast<GpsFix&>(object);
        sum += fix.Utc().value_or(0.0) + Sum(*fix.MakePosition());
    } else if (event == ParserEvent::Movement) {
        sum += static_cast<Movement&>(object).Speed(2);
    } else if (event == ParserEvent::Satellites) {
        auto& satellites = static_cast<Satellites&>(object);
        for (std::int16_t i = 1; i <= satellites.Count(); ++i)
            sum += satellites.Item(i)->Snr();
    }
}

EventSink SinkTo(Counts& counts, EventCallback callback) {
    EventSink sink;
    sink.context = &counts;
    sink.callbacks.fill(callback);
    return sink;
}

void Report(benchmark::State& state, std::int64_t sentences, double ns, std::int64_t allocated) {
    const auto n = static_cast<double>(sentences);
    constexpr auto kAverage = benchmark::Counter::kAvgThreads;
    state.counters["ns"] = benchmark::Counter(ns / n, kAverage);
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(allocated) / n, kAverage);
    if (floorNs > 0) state.counters["xFloor"] = benchmark::Counter(ns / n / floorNs, kAverage);
    state.SetItemsProcessed(sentences);
}

// Processor time of the thread, so that other programs of the machine do not count.
class Stopwatch {
  public:
    double Ns() const { return NowNs() - startNs_; }

  private:
    static double NowNs() {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
    }

    double startNs_ = NowNs();
};

void BM_Floor(benchmark::State& state) {
    const std::string& text = Text(1);
    Floor floor;
    const Stopwatch watch;
    for (auto _ : state)
        ForEachBlock(text, [&](std::string_view block) { floor.Feed(block); });
    floorNs = watch.Ns() / static_cast<double>(floor.sentences());
    Report(state, floor.sentences(), watch.Ns(), 0);
}

void Run(benchmark::State& state, int constellations, EventCallback callback) {
    const std::string& text = Text(constellations);
    Counts counts;
    const Ref<NmeaParser> parser = MakeRef<NmeaParser>();
    parser->SetEventSink(SinkTo(counts, callback));
    parser->Parse(std::string_view(text).substr(0, 500));  // what is made once
    const std::int64_t allocatedBefore = AllocationsOfThisThread();
    const Stopwatch watch;
    for (auto _ : state)
        ForEachBlock(text, [&](std::string_view block) { parser->Parse(block); });
    const std::int64_t sentences = counts.events[static_cast<std::size_t>(ParserEvent::Generic)];
    Report(state, sentences, watch.Ns(), AllocationsOfThisThread() - allocatedBefore);
    benchmark::DoNotOptimize(counts.sum);
}

void BM_Counting(benchmark::State& state) {
    Run(state, 1, CountEvent);
}
void BM_CountingFourConstellations(benchmark::State& state) {
    Run(state, 4, CountEvent);
}
void BM_Reading(benchmark::State& state) {
    Run(state, 1, ReadEvent);
}

BENCHMARK(BM_Floor)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Counting)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CountingFourConstellations)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Reading)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Counting)->Threads(2)->Threads(8)->Threads(32)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kavrel

BENCHMARK_MAIN();
