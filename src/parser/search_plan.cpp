#include "parser/search_plan.h"

#include <array>

namespace kavrel {
namespace {

// The standard's own rate and that of modern receivers first.
constexpr std::array<std::int32_t, 6> kRates = {4800, 9600, 38400, 19200, 57600, 115200};

}  // namespace

std::span<const std::int32_t> SearchPlan::Rates() const {
    if (givenRate_ == kDetectBaudRate) return kRates;
    return {&givenRate_, 1};
}

std::optional<PortChoice> SearchPlan::Next() {
    if (rateIndex_ == Rates().size()) SkipPort();
    if (portIndex_ == ports_.size()) return std::nullopt;
    return PortChoice{.comPort = ports_[portIndex_], .baudRate = Rates()[rateIndex_++]};
}

void SearchPlan::SkipPort() {
    rateIndex_ = 0;
    ++portIndex_;
}

}  // namespace kavrel
