#include "platform/machine.h"

#include "platform/host/scripted_machine.h"

namespace kavrel {
namespace {

// Not within the function: the engine is built without guards around local statics.
ScriptedMachine bareMachine;

}  // namespace

Machine& ThisMachine() {
    return bareMachine;
}

}  // namespace kavrel
