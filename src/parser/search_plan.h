// SearchPlan: the order in which ports and rates are tried in the search for a receiver.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "parser/port_choice.h"

namespace kavrel {

// One round: every port in the given order, each at every rate.
class SearchPlan {
  public:
    // At `baudRate` only, unless that is kDetectBaudRate.
    SearchPlan(std::vector<std::int32_t> ports, std::int32_t baudRate)
        : ports_(std::move(ports)), givenRate_(baudRate) {}

    // What to try next; nothing when the round is over.
    std::optional<PortChoice> Next();

    // The port of the last try is not tried at its other rates.
    void SkipPort();

  private:
    std::span<const std::int32_t> Rates() const;

    std::vector<std::int32_t> ports_;
    std::int32_t givenRate_;
    std::size_t portIndex_ = 0;
    std::size_t rateIndex_ = 0;
};

}  // namespace kavrel
