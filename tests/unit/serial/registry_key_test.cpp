// Registry keys, and the ports that a registry lists: the dialogues of
// tests/data/serial/registry_dialogues.txt, each on a new registry.
#include "serial/registry_key.h"

#include <functional>
#include <sstream>
#include <string>

#include "platform/host/memory_registry.h"
#include "serial/port_list.h"
#include "unit/dialogue.h"

namespace kavrel {
namespace {

template <typename Numbers>
std::string Dotted(const Numbers& numbers) {
    std::vector<std::string> texts;
    for (const int number : numbers)
        texts.push_back(std::to_string(number));
    return Joined(texts, ".");
}

std::vector<std::uint8_t> Undotted(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    std::istringstream numbers(text);
    for (std::string number; std::getline(numbers, number, '.');)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(number)));
    return bytes;
}

RegistryCall RegistryCallOf(const std::string& name) {
    return Named<RegistryCall>({"CreateKey", "OpenKey", "DeleteKey", "DeleteValue", "EnumKey",
                                "EnumValue", "QueryValueSize", "QueryValue", "SetValue"},
                               name);
}

class RegistryDialogue : public testing::TestWithParam<TableGroup> {
  protected:
    RegistryDialogue() {
        dialogue_.Add("CreateSubkey", &RegistryKey::CreateSubkey);
        dialogue_.Add("OpenSubkey", &RegistryKey::OpenSubkey);
        dialogue_.Add("DeleteSubkey", &RegistryKey::DeleteSubkey);
        dialogue_.Add("DeleteValue", &RegistryKey::DeleteValue);
        dialogue_.Add("SetInteger", &RegistryKey::SetInteger);
        dialogue_.Add("SetText", &RegistryKey::SetText);
        dialogue_.Add("SetBytes", [this](std::u16string_view name, const std::string& bytes) {
            const RegValue value = RegValue::OfBytes(MakeRef<ByteBlock>(Undotted(bytes)));
            key_->SetValue(name, &value);
            return ErrorOf(key_->error());
        });
        dialogue_.Add("SubkeyNames", [this] { return Names(key_->SubkeyNames()); });
        dialogue_.Add("ValueNames", [this] { return Names(key_->ValueNames()); });
        dialogue_.Add("ReadValue", [this](std::u16string_view name) { return Read(name); });
        dialogue_.Add("Ports", [this](bool withFriendlyNames) { return Ports(withFriendlyNames); });
        dialogue_.Add("PortNumberIn", PortNumberIn);
        // The registry's side.
        dialogue_.Add("AddKey", [this](std::u16string_view key) { store_.AddKey(key); });
        dialogue_.Add("AddText",
                      [this](std::u16string_view key, std::u16string_view name,
                             std::u16string_view text) { store_.AddText(key, name, text); });
        dialogue_.Add("AddValue", [this](std::u16string_view key, std::u16string_view name,
                                         std::uint32_t type, const std::string& bytes) {
            store_.AddValue(key, name, type, Undotted(bytes));
        });
        dialogue_.Add("Stored", [this](std::u16string_view name) {
            const auto value = store_.FindValue(kPath, name);
            return value ? std::to_string(value->type) + ":" + Dotted(value->data) : "(none)";
        });
        dialogue_.Add("Fail", [this](const std::string& call, std::uint32_t error, int skipped) {
            store_.Fail(RegistryCallOf(call), error, skipped);
        });
    }
    void TearDown() override {
        key_.Reset();
        EXPECT_EQ(0U, store_.OpenHandleCount()) << "a key was not closed";
    }

    static constexpr std::u16string_view kPath = u"Software\\Kavrel";

    MemoryRegistryStore store_;
    Ref<RegistryKey> key_ = RegistryKey::LocalMachine(store_)->CreateSubkey(kPath);
    Dialogue<RegistryKey> dialogue_{[this]() -> RegistryKey& { return *key_; }};

  private:
    std::string Names(const std::optional<RegistryKey::Names>& names) const {
        if (!names) return "! " + ErrorOf(key_->error());
        std::vector<std::string> texts;
        for (const std::u16string& name : *names)
            texts.push_back(Utf8(name));
        return Joined(texts);
    }

    std::string Ports(bool withFriendlyNames) {
        std::vector<std::string> ports;
        for (const ListedPort& port : EnumeratePorts(store_, withFriendlyNames))
            ports.push_back("[" + Utf8(port.text) + "]=" + std::to_string(port.number));
        return Joined(ports);
    }

    // The kind and the content.
    std::string Read(std::u16string_view name) const {
        const std::optional<RegValue> value = key_->ReadValue(name);
        if (key_->error().IsSet()) return "! " + ErrorOf(key_->error());
        if (!value) return "none";
        switch (value->kind) {
            case RegKind::Text:
                return "text:" + Utf8(value->text);
            case RegKind::Integer:
                return "integer:" + std::to_string(value->integer);
            case RegKind::Bytes:
                return "bytes:" + Dotted(value->bytes->bytes());
            default:
                return "empty";
        }
    }
};

TEST_P(RegistryDialogue, Holds) {
    dialogue_.Hold(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, RegistryDialogue,
                         testing::ValuesIn(ReadGroups("serial/registry_dialogues.txt")),
                         NameOfGroup);

TEST(RegistryKey, MissingNamesAndValuesReachNoPlatformCall) {
    const RegValue empty;
    const RegValue noBytes = RegValue::OfBytes(nullptr);
    const std::function<void(RegistryKey&)> kCases[] = {
        [](auto& key) { EXPECT_FALSE(key.CreateSubkey({})); },
        [](auto& key) { EXPECT_FALSE(key.OpenSubkey({})); },
        [](auto& key) { key.DeleteSubkey({}); },
        [](auto& key) { key.DeleteValue({}); },
        [](auto& key) { EXPECT_FALSE(key.ReadValue({})); },
        [](auto& key) { key.SetInteger({}, 1); },
        [](auto& key) { key.SetText({}, u"x"); },
        [](auto& key) { key.SetText(u"New", {}); },
        [](auto& key) { key.SetValue(u"New", nullptr); },
        [&](auto& key) { key.SetValue(u"New", &empty); },
        [&](auto& key) { key.SetValue(u"New", &noBytes); },
    };
    MemoryRegistryStore store;
    const Ref<RegistryKey> root = RegistryKey::LocalMachine(store);
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        root->error().Clear();
        kCases[i](*root);
        EXPECT_EQ("10003 Invalid parameter!", ErrorOf(root->error())) << i;
    }
    EXPECT_EQ(0U, store.CallCount());
}

}  // namespace
}  // namespace kavrel
