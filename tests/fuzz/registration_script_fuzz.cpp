// Any text as a registration script: it must end, and treat every registry decently.
#include <string>

#include "frame/registration_script.h"
#include "fuzz/check.h"
#include "fuzz/input.h"
#include "unit/frame/memory_registry.h"

namespace kavrel {
namespace {

// No operation may create or remove the classes root itself.
void CheckPaths(const MemoryRegistry& registry) {
    for (const std::string& operation : registry.operations) {
        Check(operation != "create " && operation != "remove " && operation != "remove tree ");
    }
}

void Run(const std::string& script, std::size_t failingOperation) {
    MemoryRegistry registry;
    registry.failingOperation = failingOperation;
    const std::uint32_t registered = RunRegistrationScript(script, ScriptMode::Register, registry);
    CheckPaths(registry);
    const bool hasFailed = registry.operations.size() > failingOperation;
    if (hasFailed) {
        Check(registered == registry.failure);
        Check(registry.operations.size() == failingOperation + 1);
    } else {
        Check(registered == 0 || registered == kScriptMalformed);
    }

    registry.operations.clear();
    const std::uint32_t unregistered =
        RunRegistrationScript(script, ScriptMode::Unregister, registry);
    CheckPaths(registry);
    if (registry.operations.size() <= failingOperation && !hasFailed) {
        Check(unregistered == registered);
    }
    for (const std::string& operation : registry.operations)
        Check(operation.starts_with("remove"));
}

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kavrel;
    Input input(data, size);
    const std::size_t failingOperation = input.Take<std::uint8_t>();
    kavrel::Run(input.TakeRest(), failingOperation);
    return 0;
}
