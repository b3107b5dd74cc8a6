// Any text as a registration script: it must end, and treat every registry decently.
#include <string>

#include "frame/registration_script.h"
#include "fuzz/fuzz.h"
#include "unit/frame/recording_editor.h"

namespace kavrel {
namespace {

class Session {
  public:
    explicit Session(Input input)
        : failingOperation_(input.Take<std::uint8_t>()), script_(input.TakeRest()) {}

    void Run() const {
        const std::uint32_t registered = Run(ScriptMode::Register);
        const std::uint32_t unregistered = Run(ScriptMode::Unregister);
        const auto isOfTheScript = [](std::uint32_t error) {
            return error == 0 || error == kScriptMalformed;
        };
        if (isOfTheScript(registered) && isOfTheScript(unregistered))
            Check(registered == unregistered);
    }

  private:
    std::uint32_t Run(ScriptMode mode) const {
        RecordingEditor editor(failingOperation_);
        const std::uint32_t error = RunRegistrationScript(script_, mode, editor);
        const bool hasFailed = editor.operations.size() > failingOperation_;
        if (hasFailed) {
            Check(error == RecordingEditor::kFailure);
            Check(mode == ScriptMode::Unregister ||
                  editor.operations.size() == failingOperation_ + 1);
        } else {
            Check(error == 0 || error == kScriptMalformed);
        }
        for (const std::string& operation : editor.operations) {
            Check(mode == ScriptMode::Register || operation.starts_with("remove"));
            // None may create or remove the classes root itself.
            Check(operation != "create " && operation != "remove " && operation != "remove tree ");
        }
        return error;
    }

    std::size_t failingOperation_;
    std::string script_;
};

}  // namespace
}  // namespace kavrel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return kavrel::RunSession<kavrel::Session>(data, size);
}
