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

// What a script does, and its error where there is one. The operation with this index fails.
std::string DoneBy(const std::string& script, ScriptMode mode, std::size_t failing = SIZE_MAX) {
    RecordingEditor editor(failing);
    const std::uint32_t error = RunRegistrationScript(script, mode, editor);
    std::string text;
    for (const std::string& operation : editor.operations)
        text += (text.empty() ? "" : "; ") + operation;
    if (error == 0) return text;
    return text + "! " + (error == kScriptMalformed ? "malformed" : std::to_string(error));
}

TEST(RegistrationScript, DoesWhatItSays) {
    for (const TableRow& row : ReadTable("frame/scripts.txt")) {
        const std::size_t failing = row[3].empty() ? SIZE_MAX : std::stoul(row[3]);
        EXPECT_EQ(DoneBy(row[0], ScriptMode::Register, failing), row[1]) << row.where;
        EXPECT_EQ(DoneBy(row[0], ScriptMode::Unregister, failing), row[2]) << row.where;
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
    std::string keys = "K";
    for (int depth = 0; depth < 100; ++depth) {
        for (const ScriptMode mode : kModes) {
            const bool isMalformed = DoneBy("HKCR { " + keys + " }", mode).ends_with("malformed");
            EXPECT_EQ(isMalformed, depth > 16) << depth;
        }
        keys = "K { " + keys + " }";
    }
}

TEST(RegistrationScript, ShippedOnesAreWellFormed) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KAVREL_SCRIPTS)) {
        if (entry.path().extension() != ".rgs") continue;
        ++count;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string script{std::istreambuf_iterator<char>(file), {}};
        for (const ScriptMode mode : kModes)
            EXPECT_EQ(DoneBy(script, mode).find('!'), std::string::npos) << entry.path();
    }
    EXPECT_EQ(count, 14);
}

}  // namespace
}  // namespace kavrel
