// The real registry, through the library's own keys, whose rules are tested on one in memory.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "base/library_lock.h"
#include "platform/win32/registry_store.h"
#include "serial/registry_key.h"

namespace kavrel::tests {

namespace {

using testing::ElementsAre;
using testing::Optional;
using testing::UnorderedElementsAre;

constexpr wchar_t kScratch[] = L"Software\\KavrelTest";

std::string ErrorOf(const RegistryKey& key) {
    if (!key.error().IsSet()) return "ok";
    return std::to_string(key.error().code()) + " " + std::string(key.error().text());
}

// Type and bytes, read past the library.
std::string Stored(const wchar_t* name) {
    std::vector<unsigned char> data(64);
    DWORD type = 0;
    auto size = static_cast<DWORD>(data.size());
    EXPECT_EQ(ERROR_SUCCESS, RegGetValueW(HKEY_LOCAL_MACHINE, kScratch, name, RRF_RT_ANY, &type,
                                          data.data(), &size));
    std::string text = std::to_string(type) + ":";
    for (DWORD i = 0; i < size; ++i)
        text += " " + std::to_string(data[i]);
    return text;
}

class RegistryTest : public testing::Test {
  protected:
    // The library's sources are linked into this program, with a library lock of their own.
    static void SetUpTestSuite() { libraryLock.Create(); }

    void SetUp() override {
        TearDown();
        EXPECT_FALSE(root_->OpenSubkey(u"Software\\KavrelTest"));
        EXPECT_EQ("2 Error opening subkey", ErrorOf(*root_));
        scratch_ = root_->CreateSubkey(u"\\Software\\KavrelTest");
        ASSERT_TRUE(scratch_) << ErrorOf(*root_);
    }
    void TearDown() override { RegDeleteTreeW(HKEY_LOCAL_MACHINE, kScratch); }

    Ref<RegistryKey> root_ = RegistryKey::LocalMachine(PlatformRegistry());
    Ref<RegistryKey> scratch_;  // the key that a test may do anything with
};

TEST_F(RegistryTest, CreatesOpensEnumeratesAndDeletesKeys) {
    const std::u16string longest(255, u'n');
    for (const std::u16string& name : {std::u16string(u"b"), std::u16string(u"A"), longest})
        EXPECT_TRUE(scratch_->CreateSubkey(name)) << ErrorOf(*scratch_);
    EXPECT_TRUE(root_->OpenSubkey(u"SOFTWARE\\kavreltest\\a")) << ErrorOf(*root_);
    root_->DeleteSubkey(u"\\Software\\KavrelTest\\A");
    EXPECT_EQ("ok", ErrorOf(*root_));
    scratch_->DeleteSubkey(u"A");
    EXPECT_EQ("2 Error deleting register subkey", ErrorOf(*scratch_));
    EXPECT_THAT(scratch_->SubkeyNames(), Optional(ElementsAre(u"b", longest)));
}

TEST_F(RegistryTest, WritesReadsEnumeratesAndDeletesValues) {
    scratch_->SetText(u"Text", u"A\u0141");
    scratch_->SetInteger(u"Integer", 0x80000001);
    EXPECT_EQ("1: 65 0 65 1 0 0", Stored(L"Text"));
    EXPECT_EQ("4: 1 0 0 128", Stored(L"Integer"));
    EXPECT_EQ(u"A\u0141", scratch_->ReadValue(u"TEXT").value_or(RegValue()).text);
    EXPECT_THAT(scratch_->ValueNames(), Optional(UnorderedElementsAre(u"Integer", u"Text")));

    scratch_->DeleteValue(u"Text");
    EXPECT_EQ("ok", ErrorOf(*scratch_));
    EXPECT_FALSE(scratch_->ReadValue(u"Text"));
    EXPECT_EQ("2 Error reading registry value", ErrorOf(*scratch_));
    scratch_->DeleteValue(u"Text");
    EXPECT_EQ("2 Error deleting register value", ErrorOf(*scratch_));
}

}  // namespace

}  // namespace kavrel::tests
