// WorkItem: one thing for the parser to dispatch, on whichever thread that happens.
#pragma once

#include <cstdint>

#include "base/record.h"

namespace kavrel {

enum class WorkKind : std::uint8_t {
    Sentence = 1,   // object: the NmeaSentence
    ComStatus = 2,  // object: the ComStatus, or none for the one at the time of dispatch
};

struct WorkItem {
    WorkKind kind;
    Ref<Record> object;
};

}  // namespace kavrel
