#include "frame/registration_script.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "unit/frame/memory_registry.h"

namespace kavrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The classes that are registered, in the order of registration.
constexpr const char* kClasses[] = {"NmeaParser", "Position", "CustomGrid", "CustomDatum"};

// A shipped script, each placeholder filled with its own name: "@CLSID_X@" becomes "CLSID_X".
std::string ShippedScript(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::string text{std::istreambuf_iterator<char>(file), {}};
    std::erase(text, '@');
    return text;
}

std::string ScriptOfClass(const std::string& name) {
    return ShippedScript(std::filesystem::path(KAVREL_SCRIPTS) / (name + ".rgs"));
}

std::uint32_t Register(std::string_view script, MemoryRegistry& registry) {
    return RunRegistrationScript(script, ScriptMode::Register, registry);
}

std::uint32_t Unregister(std::string_view script, MemoryRegistry& registry) {
    return RunRegistrationScript(script, ScriptMode::Unregister, registry);
}

void RegisterAll(MemoryRegistry& registry) {
    for (const char* name : kClasses)
        ASSERT_EQ(Register(ScriptOfClass(name), registry), 0u) << name;
}

// What other programs have in their registry.
MemoryRegistry::Keys OthersKeys() {
    return {{"CLSID", {}},
            {"CLSID\\{other}", {{"", "Other Class"}}},
            {"Component Categories", {}},
            {"Component Categories\\{other}", {{"409", "Other category"}}}};
}

constexpr const char* kScriptable = "{7DD95801-9882-11CF-9FA9-00AA006C42C4}";
constexpr const char* kInitializable = "{7DD95802-9882-11CF-9FA9-00AA006C42C4}";

TEST(ShippedScripts, RegisterEachClass) {
    MemoryRegistry registry;
    RegisterAll(registry);
    for (const std::string name : kClasses) {
        const std::string classId = "{CLSID_" + name + "}";
        const std::string key = "CLSID\\" + classId;
        const std::string versioned = "KavrelCE." + name + ".1";
        const std::string unversioned = "KavrelCE." + name;
        const std::string description = name + " Class";
        EXPECT_EQ(registry.TextOf(versioned), description);
        EXPECT_EQ(registry.TextOf(versioned + "\\CLSID"), classId);
        EXPECT_EQ(registry.TextOf(unversioned), description);
        EXPECT_EQ(registry.TextOf(unversioned + "\\CLSID"), classId);
        EXPECT_EQ(registry.TextOf(unversioned + "\\CurVer"), versioned);
        EXPECT_EQ(registry.TextOf(key), description);
        EXPECT_EQ(registry.TextOf(key + "\\ProgID"), versioned);
        EXPECT_EQ(registry.TextOf(key + "\\VersionIndependentProgID"), unversioned);
        EXPECT_TRUE(registry.keys.contains(key + "\\Programmable"));
        EXPECT_EQ(registry.TextOf(key + "\\InprocServer32"), "%MODULE%");
        EXPECT_EQ(registry.TextOf(key + "\\TypeLib"), "{LIBID_KavrelCE}");

        const bool isFree = name.starts_with("Custom");
        EXPECT_EQ(registry.TextOf(key + "\\InprocServer32", "ThreadingModel"),
                  isFree ? "Free" : "(none)");
        for (const char* category : {kScriptable, kInitializable}) {
            EXPECT_EQ(registry.keys.contains(key + "\\Implemented Categories\\" + category),
                      !isFree);
        }
    }
    EXPECT_EQ(registry.TextOf(std::string("Component Categories\\") + kScriptable, "409"),
              "Controls that are safely scriptable");
    EXPECT_EQ(registry.TextOf(std::string("Component Categories\\") + kInitializable, "409"),
              "Controls safely initializable from persistent data");
}

TEST(ShippedScripts, RegisteringAgainOnlyClearsWhatAnOlderVersionLeft) {
    MemoryRegistry registry;
    RegisterAll(registry);
    const MemoryRegistry::Keys clean = registry.keys;
    RegisterAll(registry);
    EXPECT_EQ(registry.keys, clean);
    registry.keys["CLSID\\{CLSID_Position}"]["AppID"] = "{old}";
    registry.keys["CLSID\\{CLSID_Position}\\Control"];
    RegisterAll(registry);
    EXPECT_EQ(registry.keys, clean);
}

TEST(ShippedScripts, UnregisteringLeavesWhatOthersUse) {
    MemoryRegistry registry;
    registry.keys = OthersKeys();
    RegisterAll(registry);
    for (const char* name : kClasses)
        EXPECT_EQ(Unregister(ScriptOfClass(name), registry), 0u);

    // The two categories are the system's own and stay.
    MemoryRegistry::Keys expected = OthersKeys();
    for (const char* category : {kScriptable, kInitializable}) {
        const std::string key = std::string("Component Categories\\") + category;
        expected[key]["409"] = registry.TextOf(key, "409");
    }
    EXPECT_EQ(registry.keys, expected);
}

TEST(ShippedScripts, AreAllWellFormed) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KAVREL_SCRIPTS)) {
        if (entry.path().extension() != ".rgs") continue;
        ++count;
        MemoryRegistry registry;
        EXPECT_EQ(Register(ShippedScript(entry.path()), registry), 0u) << entry.path();
        EXPECT_EQ(Unregister(ShippedScript(entry.path()), registry), 0u) << entry.path();
    }
    EXPECT_EQ(count, 14);
}

TEST(ShippedScripts, RegisteringStopsAtTheFirstFailure) {
    const std::string script = ScriptOfClass("Position");
    MemoryRegistry whole;
    ASSERT_EQ(Register(script, whole), 0u);
    for (std::size_t i = 0; i < whole.operations.size(); ++i) {
        MemoryRegistry registry;
        registry.failingOperation = i;
        EXPECT_EQ(Register(script, registry), 5u) << whole.operations[i];
        EXPECT_EQ(registry.operations.size(), i + 1) << whole.operations[i];
    }
}

TEST(ShippedScripts, UnregisteringGoesOnAfterAFailure) {
    const std::string script = ScriptOfClass("Position");
    MemoryRegistry whole;
    ASSERT_EQ(Unregister(script, whole), 0u);
    ASSERT_FALSE(whole.operations.empty());
    for (std::size_t i = 0; i < whole.operations.size(); ++i) {
        MemoryRegistry registry;
        registry.failingOperation = i;
        EXPECT_EQ(Unregister(script, registry), 5u) << whole.operations[i];
        EXPECT_EQ(registry.operations, whole.operations);
    }
}

TEST(RegistrationScript, CreatesKeysAndValues) {
    MemoryRegistry registry;
    ASSERT_EQ(Register("HKCR\r\n{\r\n"
                       "  Plain = s word\r\n"
                       "  'Two words' = s 'it''s quoted'\r\n"
                       "  Outer { Inner { val Name = s Text val '' = s 'by empty name' } }\r\n"
                       "\t'val' { 'NoRemove' = s '' }\r\n"
                       "  {guid} = s '{guid}'\r\n"
                       "  A\\B\r\n"
                       "  val Root = s 'value'\r\n"
                       "}\r\n",
                       registry),
              0u);
    const MemoryRegistry::Keys expected = {
        {"Plain", {{"", "word"}}},
        {"Two words", {{"", "it's quoted"}}},
        {"Outer", {}},
        {"Outer\\Inner", {{"Name", "Text"}, {"", "by empty name"}}},
        {"val", {}},
        {"val\\NoRemove", {{"", ""}}},
        {"{guid}", {{"", "{guid}"}}},
        {"A", {}},
        {"A\\B", {}},
        {"", {{"Root", "value"}}},
    };
    EXPECT_EQ(registry.keys, expected);
}

TEST(RegistrationScript, UnregistersFromTheInside) {
    MemoryRegistry registry;
    EXPECT_EQ(
        Unregister("HKCR { NoRemove A { B { C val V = s T } } ForceRemove D { E } }", registry),
        0u);
    // D is gone whole before its subkey's turn comes, which then is no error.
    EXPECT_THAT(registry.operations,
                ElementsAre("remove A\\B\\C", "remove A\\B", "remove tree D", "remove D\\E"));
}

TEST(RegistrationScript, KeepsAKeyThatOthersStillUse) {
    constexpr const char* kScript = "HKCR { A { B } }";
    MemoryRegistry registry;
    ASSERT_EQ(Register(kScript, registry), 0u);
    registry.CreateKey("A\\Other");
    EXPECT_EQ(Unregister(kScript, registry), 0u);
    const MemoryRegistry::Keys expected = {{"A", {}}, {"A\\Other", {}}};
    EXPECT_EQ(registry.keys, expected);
}

TEST(RegistrationScript, RefusesMalformedScripts) {
    const std::string_view kScripts[] = {
        "",
        "   ",
        "HKCR",
        "HKLM { A }",
        "'HKCR' { A }",
        "HKCR A",
        "HKCR '{' A }",
        "HKCR {",
        "HKCR { A",
        "HKCR { A {",
        "HKCR { A { }",
        "HKCR { A } }",
        "HKCR { A } B",
        "HKCR { A } ''",
        "HKCR { { A } }",
        "HKCR { = s 'x' }",
        "HKCR { '' }",
        "HKCR { '' = s 'x' }",
        "HKCR { NoRemove }",
        "HKCR { ForceRemove { A } }",
        "HKCR { ForceRemove",
        "HKCR { A = s { B } }",
        "HKCR { A = s = }",
        "HKCR { A = }",
        "HKCR { A = 'text' }",
        "HKCR { A = d 5 }",
        "HKCR { A = 's' 'text' }",
        "HKCR { A = s",
        "HKCR { A = s }",
        "HKCR { A = s 'open }",
        "HKCR { 'open }",
        "HKCR { val }",
        "HKCR { val",
        "HKCR { val } = s 'x' }",
        "HKCR { val N }",
        "HKCR { val N s 'x' }",
        "HKCR { val N = x 'x' }",
        "HKCR { val N = s",
        "HKCR { val = s 'x' }",
    };
    for (const std::string_view script : kScripts) {
        for (const ScriptMode mode : {ScriptMode::Register, ScriptMode::Unregister}) {
            MemoryRegistry registry;
            EXPECT_EQ(RunRegistrationScript(script, mode, registry), kScriptMalformed) << script;
        }
    }
}

TEST(RegistrationScript, StopsWhereItIsMalformed) {
    MemoryRegistry registry;
    EXPECT_EQ(Register("HKCR { A B = s } C }", registry), kScriptMalformed);
    EXPECT_THAT(registry.operations, ElementsAre("create A", "create B"));
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
    for (const ScriptMode mode : {ScriptMode::Register, ScriptMode::Unregister}) {
        MemoryRegistry registry;
        EXPECT_EQ(RunRegistrationScript(nested(16), mode, registry), 0u);
        EXPECT_EQ(RunRegistrationScript(nested(17), mode, registry), kScriptMalformed);
        EXPECT_EQ(RunRegistrationScript(nested(100000), mode, registry), kScriptMalformed);
    }
}

}  // namespace
}  // namespace kavrel
