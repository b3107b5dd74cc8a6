// The calls of a scripted device by their names, for dialogues.
#pragma once

#include <string>

#include "platform/host/scripted_comm_device.h"
#include "unit/dialogue.h"

namespace kavrel {

inline CommCall CommCallOf(const std::string& name) {
    return Named<CommCall>({"Open", "GetState", "SetState", "GetTimeouts", "SetTimeouts", "Purge",
                            "Escape", "GetModemStatus", "SetMask", "WaitEvent", "Read", "Write"},
                           name);
}

}  // namespace kavrel
