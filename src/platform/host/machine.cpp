#include "platform/machine.h"

#include "platform/host/scripted_machine.h"

namespace kavrel {

Machine& ThisMachine() {
    static ScriptedMachine bare;
    return bare;
}

}  // namespace kavrel
