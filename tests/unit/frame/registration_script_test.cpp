// The interpreter of registration scripts. What the shipped ones write is seen in the registry
// itself, by the automation tests.
#include "frame/registration_script.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "table.h"
#include "unit/frame/recording_editor.h"

namespace kavrel {
namespace {

constexpr ScriptMode kModes[] = {ScriptMode::Register, ScriptMode::Unregister};

std::string ShippedScript(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

// What a script does, and its error where there is one.
std::string DoneBy(const std::string& script, ScriptMode mode) {
    RecordingEditor editor;
    const std::uint32_t error = RunRegistrationScript(script, mode, editor);
    std::string text;
    for (const std::string& operation : editor.operations)
        text += (text.empty() ? "" : "; ") + operation;
    return error == 0 ? text : text + (error == kScriptMalformed ? "! malformed" : "! failed");
}

TEST(RegistrationScript, DoesWhatItSays) {
    for (const TableRow& row : ReadTable("frame/scripts.txt")) {
        EXPECT_EQ(DoneBy(row[0], ScriptMode::Register), row[1]) << row.where;
        EXPECT_EQ(DoneBy(row[0], ScriptMode::Unregister), row[2]) << row.where;
    }
}

TEST(RegistrationScript, RefusesMalformedScripts) {
    for (const ScriptMode mode : kModes) {
        for (const char* blank : {"", " \r\n\t"})
            EXPECT_EQ(DoneBy(blank, mode), "! malformed");
        for (const TableRow& row : ReadTable("frame/malformed_scripts.txt", '|')) {
            RecordingEditor editor;
            EXPECT_EQ(RunRegistrationScript(row[0], mode, editor), kScriptMalformed) << row.where;
        }
    }
}

TEST(RegistrationScript, LimitsNesting) {
    const auto nested = [](int depth) {
        std::string script = "HKCR { K";
        for (int i = 0; i < depth; ++i)
            script += " { K";
        for (int i = 0; i < depth; ++i)
            script += " }";
        return script + " }";
    };
    for (const ScriptMode mode : kModes) {
        RecordingEditor editor;
        EXPECT_EQ(RunRegistrationScript(nested(16), mode, editor), 0u);
        EXPECT_EQ(RunRegistrationScript(nested(17), mode, editor), kScriptMalformed);
        EXPECT_EQ(RunRegistrationScript(nested(100000), mode, editor), kScriptMalformed);
    }
}

TEST(RegistrationScript, ShippedOnesAreWellFormed) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KAVREL_SCRIPTS)) {
        if (entry.path().extension() != ".rgs") continue;
        ++count;
        for (const ScriptMode mode : kModes) {
            RecordingEditor editor;
            EXPECT_EQ(RunRegistrationScript(ShippedScript(entry.path()), mode, editor), 0u)
                << entry.path();
        }
    }
    EXPECT_EQ(count, 14);
}

TEST(RegistrationScript, RegisteringStopsAtTheFirstFailureAndUnregisteringGoesOn) {
    const std::string script =
        ShippedScript(std::filesystem::path(KAVREL_SCRIPTS) / "Position.rgs");
    for (const ScriptMode mode : kModes) {
        RecordingEditor whole;
        ASSERT_EQ(RunRegistrationScript(script, mode, whole), 0u);
        ASSERT_FALSE(whole.operations.empty());
        for (std::size_t i = 0; i < whole.operations.size(); ++i) {
            RecordingEditor editor(i);
            EXPECT_EQ(RunRegistrationScript(script, mode, editor), RecordingEditor::kFailure);
            EXPECT_EQ(editor.operations.size(),
                      mode == ScriptMode::Register ? i + 1 : whole.operations.size())
                << whole.operations[i];
        }
    }
}

}  // namespace
}  // namespace kavrel
