#include "serial/registry_key.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/host/memory_registry.h"

namespace kavrel {
namespace {

using Bytes = std::vector<std::uint8_t>;

// "ok", or code and text of the error.
std::string ErrorOf(const RegistryKey& key) {
    if (!key.error().IsSet()) return "ok";
    return std::to_string(key.error().code()) + " " + std::string(key.error().text());
}

// The kind and the content.
std::string Describe(const std::optional<RegValue>& value) {
    if (!value) return "none";
    switch (value->kind) {
        case RegKind::Text:
            return "text " + std::string(value->text.begin(), value->text.end());
        case RegKind::Integer:
            return "integer " + std::to_string(value->integer);
        case RegKind::Bytes: {
            std::string text = "bytes";
            for (const int byte : value->bytes->bytes())
                text += " " + std::to_string(byte);
            return text;
        }
        default:
            return "empty";
    }
}

class RegistryKeyTest : public testing::Test {
  protected:
    void TearDown() override {
        key_.Reset();
        root_.Reset();
        EXPECT_EQ(0U, store_.OpenHandleCount()) << "a key was not closed";
    }

    // A key with a subkey and two values.
    void MakeKey() {
        store_.AddKey(u"Software\\Kavrel\\Sub");
        store_.AddText(u"Software\\Kavrel", u"Text", u"abc");
        store_.AddText(u"Software\\Kavrel", u"Another", u"");
        key_ = root_->OpenSubkey(u"Software\\Kavrel");
        ASSERT_TRUE(key_) << ErrorOf(*root_);
    }

    MemoryRegistryStore store_;
    Ref<RegistryKey> root_ = RegistryKey::LocalMachine(store_);
    Ref<RegistryKey> key_;
};

using Operation = std::function<void(RegistryKey&)>;

const RegValue kInteger = RegValue::OfInteger(1);

struct FailingCall {
    RegistryCall call;
    int skipped;  // calls of that kind that succeed before
    Operation operation;
    std::string error;
};

TEST_F(RegistryKeyTest, EachFailingCallIsReportedWithItsTextAndThePlatformsResult) {
    const FailingCall kCases[] = {
        {RegistryCall::CreateKey, 0, [](auto& key) { EXPECT_FALSE(key.CreateSubkey(u"New")); },
         "Error creating or opening subkey"},
        {RegistryCall::OpenKey, 0, [](auto& key) { EXPECT_FALSE(key.OpenSubkey(u"Sub")); },
         "Error opening subkey"},
        {RegistryCall::DeleteKey, 0, [](auto& key) { key.DeleteSubkey(u"Sub"); },
         "Error deleting register subkey"},
        {RegistryCall::DeleteValue, 0, [](auto& key) { key.DeleteValue(u"Text"); },
         "Error deleting register value"},
        {RegistryCall::EnumKey, 0, [](auto& key) { EXPECT_FALSE(key.SubkeyNames()); },
         "Error reading subkey names"},
        {RegistryCall::EnumKey, 1, [](auto& key) { EXPECT_FALSE(key.SubkeyNames()); },
         "Error reading subkey names"},
        {RegistryCall::EnumValue, 0, [](auto& key) { EXPECT_FALSE(key.ValueNames()); },
         "Error reading value names"},
        {RegistryCall::EnumValue, 2, [](auto& key) { EXPECT_FALSE(key.ValueNames()); },
         "Error reading value names"},
        {RegistryCall::QueryValueSize, 0, [](auto& key) { EXPECT_FALSE(key.ReadValue(u"Text")); },
         "Error reading registry value"},
        {RegistryCall::QueryValue, 0, [](auto& key) { EXPECT_FALSE(key.ReadValue(u"Text")); },
         "Error reading registry value"},
        {RegistryCall::SetValue, 0, [](auto& key) { key.SetValue(u"New", &kInteger); },
         "Error setting value"},
        {RegistryCall::SetValue, 0, [](auto& key) { key.SetInteger(u"New", 1); },
         "Error setting value"},
        {RegistryCall::SetValue, 0, [](auto& key) { key.SetText(u"New", u"x"); },
         "Error setting value"},
    };
    MakeKey();
    for (const FailingCall& each : kCases) {
        store_.Fail(each.call, 1234, each.skipped);
        each.operation(*key_);
        EXPECT_EQ("1234 " + each.error, ErrorOf(*key_));
        EXPECT_TRUE(key_->SubkeyNames());
        EXPECT_EQ("ok", ErrorOf(*key_)) << "the next operation clears the error";
    }
    EXPECT_FALSE(store_.FindValue(u"Software\\Kavrel", u"New"));
    EXPECT_FALSE(store_.HasKey(u"Software\\Kavrel\\New"));
}

TEST_F(RegistryKeyTest, MissingNamesAndValuesReachNoPlatformCall) {
    const RegValue empty;
    const RegValue noBytes = RegValue::OfBytes(nullptr);
    const Operation kCases[] = {
        [](auto& key) { EXPECT_FALSE(key.CreateSubkey({})); },
        [](auto& key) { EXPECT_FALSE(key.OpenSubkey({})); },
        [](auto& key) { key.DeleteSubkey({}); },
        [](auto& key) { key.DeleteValue({}); },
        [](auto& key) { EXPECT_FALSE(key.ReadValue({})); },
        [](auto& key) { key.SetValue({}, &kInteger); },
        [](auto& key) { key.SetInteger({}, 1); },
        [](auto& key) { key.SetText({}, u"x"); },
        [](auto& key) { key.SetText(u"New", {}); },
        [](auto& key) { key.SetValue(u"New", nullptr); },
        [&](auto& key) { key.SetValue(u"New", &empty); },
        [&](auto& key) { key.SetValue(u"New", &noBytes); },
    };
    for (std::size_t i = 0; i < std::size(kCases); ++i) {
        root_->error().Clear();
        kCases[i](*root_);
        EXPECT_EQ("10003 Invalid parameter!", ErrorOf(*root_)) << i;
    }
    EXPECT_EQ(0U, store_.CallCount());
}

TEST_F(RegistryKeyTest, CreatesOpensEnumeratesAndDeletesSubkeys) {
    using Names = RegistryKey::Names;
    const Ref<RegistryKey> made = root_->CreateSubkey(u"\\Software\\Kavrel");
    ASSERT_TRUE(made);
    EXPECT_EQ(Names(), made->SubkeyNames());
    EXPECT_EQ("ok", ErrorOf(*made));
    EXPECT_EQ(Names(), made->ValueNames());
    for (const char16_t* name : {u"b", u"A", u"c"})
        EXPECT_TRUE(made->CreateSubkey(name));
    EXPECT_EQ((Names{u"A", u"b", u"c"}), made->SubkeyNames());
    made->DeleteSubkey(u"B");
    EXPECT_EQ("ok", ErrorOf(*made));
    EXPECT_EQ((Names{u"A", u"c"}), made->SubkeyNames());

    made->SetText(u"Second", u"");
    made->SetInteger(u"First", 1);
    EXPECT_EQ((Names{u"First", u"Second"}), made->ValueNames());
    made->DeleteValue(u"Second");
    EXPECT_EQ(Names{u"First"}, made->ValueNames());
}

struct StoredValue {
    std::uint32_t type;
    Bytes data;
    std::string read;
};

TEST_F(RegistryKeyTest, TheTypeDecidesTheKindOfAValueRead) {
    const StoredValue kCases[] = {
        {kRegistryText, {'C', 0, 'O', 0, 0, 0}, "text CO"},
        {kRegistryText, {'C', 0, 'O', 0}, "text CO"},
        {kRegistryText, {'C', 0, 0, 0, 'O', 0, 0, 0}, "text C"},
        {kRegistryText, {'C', 0, 'O'}, "text C"},
        {kRegistryText, {0, 0}, "text "},
        {kRegistryBinary, {1, 0, 255}, "bytes 1 0 255"},
        {kRegistryInteger, {1, 2, 0, 0x80}, "integer 2147484161"},
        {kRegistryInteger, {7, 1}, "integer 263"},
        {7, {'a', 0, 0, 0, 0, 0}, "empty"},
        {2, {'a', 0, 0, 0}, "empty"},
        // A size of 0 is no value, and no error either.
        {kRegistryBinary, {}, "none"},
        {kRegistryText, {}, "none"},
    };
    for (const StoredValue& each : kCases) {
        store_.AddValue(u"", u"Value", each.type, each.data);
        EXPECT_EQ(each.read, Describe(root_->ReadValue(u"Value")));
        EXPECT_EQ("ok", ErrorOf(*root_)) << each.read;
    }
}

TEST_F(RegistryKeyTest, WritesEachKindAsItsType) {
    const struct {
        RegValue value;
        std::uint32_t type;
        Bytes data;
    } kCases[] = {
        {RegValue::OfText(u"C\u0141"), kRegistryText, {'C', 0, 0x41, 1, 0, 0}},
        {RegValue::OfText(u""), kRegistryText, {0, 0}},
        {RegValue::OfInteger(0xFF000102), kRegistryInteger, {2, 1, 0, 0xFF}},
        {RegValue::OfBytes(MakeRef<ByteBlock>(Bytes{9, 0, 8})), kRegistryBinary, {9, 0, 8}},
        {RegValue::OfBytes(MakeRef<ByteBlock>(Bytes{})), kRegistryBinary, {}},
    };
    MakeKey();
    for (const auto& each : kCases) {
        key_->SetValue(u"Value", &each.value);
        EXPECT_EQ("ok", ErrorOf(*key_));
        const MemoryRegistryStore::Value expected{u"Value", each.type, each.data};
        EXPECT_EQ(expected, store_.FindValue(u"Software\\Kavrel", u"Value"));
    }
}

}  // namespace
}  // namespace kavrel
