// The simulated receiver: what it says at each fix.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "nmea/sentence_generation.h"
#include "options.h"
#include "sky.h"

namespace simulator {

// Deterministic: the same options give the same text.
class Receiver {
  public:
    explicit Receiver(const Options& options) : options_(options), random_(options.seed) {}

    // The sentences of the next fix, each with its line end.
    std::string NextEpoch();

  private:
    // A number from 0 to below 1.
    double Chance() { return static_cast<double>(random_()) / 4294967296.0; }

    void Move();
    void AppendFixSentences(std::string& text, bool hasFix);
    void AppendGsa(std::string& text, const SimulatedConstellation& constellation, bool hasFix);
    void AppendGsv(std::string& text, const SimulatedConstellation& constellation);

    // With the faults that were asked for.
    void Append(std::string& text, std::string sentence);

    Options options_;
    std::mt19937 random_;
    std::int64_t epoch_ = 0;
    std::int64_t lostUntil_ = 0;
    kavrel::GeneratedPosition position_{47.5, 8.7167, 432.0, 47.9};
    kavrel::MovementValues movement_{30.0, 45.0, 1.3, true};
};

}  // namespace simulator
