// The real registry, through the library's own keys and port list.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/library_lock.h"
#include "platform/win32/registry_store.h"
#include "serial/bluetooth_tweak.h"
#include "serial/port_list.h"
#include "serial/registry_key.h"

namespace kavrel::tests {

namespace {

constexpr wchar_t kScratch[] = L"Software\\KavrelTest";
constexpr wchar_t kDrivers[] = L"Drivers";
constexpr wchar_t kBluetooth[] = L"Software\\Widcomm";

std::string ErrorOf(const RegistryKey& key) {
    if (!key.error().IsSet()) return "ok";
    return std::to_string(key.error().code()) + " " + std::string(key.error().text());
}

// Writes and reads past the library.
void Store(const std::wstring& path, const wchar_t* name, DWORD type, const void* data,
           DWORD size) {
    ASSERT_EQ(ERROR_SUCCESS,
              RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), name, type, data, size));
}
void StoreText(const std::wstring& path, const wchar_t* name, const std::wstring& text) {
    Store(path, name, REG_SZ, text.c_str(), static_cast<DWORD>((text.size() + 1) * 2));
}
std::string Stored(const wchar_t* path, const wchar_t* name) {
    std::vector<unsigned char> data(64);
    DWORD type = 0;
    auto size = static_cast<DWORD>(data.size());
    const LSTATUS status =
        RegGetValueW(HKEY_LOCAL_MACHINE, path, name, RRF_RT_ANY, &type, data.data(), &size);
    if (status != ERROR_SUCCESS) return "error " + std::to_string(status);
    std::string text = std::to_string(type) + ":";
    for (DWORD i = 0; i < size; ++i)
        text += " " + std::to_string(data[i]);
    return text;
}

class RegistryTest : public testing::Test {
  protected:
    // The library's sources are linked into this program, with a library lock of their own.
    static void SetUpTestSuite() { libraryLock.Create(); }

    void SetUp() override { Clean(); }
    void TearDown() override { Clean(); }
    static void Clean() {
        for (const wchar_t* path : {kScratch, kDrivers, kBluetooth})
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, path);
    }

    // The key that a test may do anything with.
    Ref<RegistryKey> Scratch() { return root_->CreateSubkey(u"Software\\KavrelTest"); }

    Ref<RegistryKey> root_ = RegistryKey::LocalMachine(PlatformRegistry());
};

TEST_F(RegistryTest, CreatesFindsEnumeratesAndDeletesKeys) {
    EXPECT_FALSE(root_->OpenSubkey(u"Software\\KavrelTest"));
    EXPECT_EQ("2 Error opening subkey", ErrorOf(*root_));
    const Ref<RegistryKey> scratch = Scratch();
    ASSERT_TRUE(scratch) << ErrorOf(*root_);
    EXPECT_EQ(RegistryKey::Names(), scratch->SubkeyNames());
    EXPECT_EQ("ok", ErrorOf(*scratch));

    const std::u16string longest(255, u'n');
    for (const std::u16string& name : {std::u16string(u"b"), std::u16string(u"A"), longest})
        EXPECT_TRUE(scratch->CreateSubkey(name)) << ErrorOf(*scratch);
    EXPECT_EQ((RegistryKey::Names{u"A", u"b", longest}), scratch->SubkeyNames());
    for (const char16_t* path : {u"\\Software\\KavrelTest\\A", u"SOFTWARE\\kavreltest\\a"})
        EXPECT_TRUE(root_->OpenSubkey(path)) << ErrorOf(*root_);
    EXPECT_TRUE(root_->CreateSubkey(u"\\Software\\KavrelTest\\C"));

    scratch->DeleteSubkey(u"A");
    EXPECT_EQ("ok", ErrorOf(*scratch));
    scratch->DeleteSubkey(u"A");
    EXPECT_EQ("2 Error deleting register subkey", ErrorOf(*scratch));
    root_->DeleteSubkey(u"\\Software\\KavrelTest\\C");
    EXPECT_EQ("ok", ErrorOf(*root_));
    EXPECT_EQ((RegistryKey::Names{u"b", longest}), scratch->SubkeyNames());
}

TEST_F(RegistryTest, WritesReadsEnumeratesAndDeletesValues) {
    const Ref<RegistryKey> scratch = Scratch();
    ASSERT_TRUE(scratch);
    scratch->SetText(u"Text", u"A\u0141");
    scratch->SetInteger(u"Integer", 0x80000001);
    const RegValue bytes = RegValue::OfBytes(MakeRef<ByteBlock>(std::vector<std::uint8_t>{7, 0}));
    scratch->SetValue(u"Bytes", &bytes);
    EXPECT_EQ("ok", ErrorOf(*scratch));
    EXPECT_EQ("1: 65 0 65 1 0 0", Stored(kScratch, L"Text"));
    EXPECT_EQ("4: 1 0 0 128", Stored(kScratch, L"Integer"));
    EXPECT_EQ("3: 7 0", Stored(kScratch, L"Bytes"));

    EXPECT_EQ(u"A\u0141", scratch->ReadValue(u"TEXT").value_or(RegValue()).text);
    EXPECT_EQ(0x80000001, scratch->ReadValue(u"Integer").value_or(RegValue()).integer);
    const auto read = scratch->ReadValue(u"Bytes");
    ASSERT_TRUE(read && read->kind == RegKind::Bytes);
    EXPECT_EQ(bytes.bytes->bytes(), read->bytes->bytes());

    auto names = scratch->ValueNames().value_or(RegistryKey::Names());
    std::sort(names.begin(), names.end());
    EXPECT_EQ((RegistryKey::Names{u"Bytes", u"Integer", u"Text"}), names);
    scratch->DeleteValue(u"Text");
    EXPECT_EQ("ok", ErrorOf(*scratch));
    scratch->DeleteValue(u"Text");
    EXPECT_EQ("2 Error deleting register value", ErrorOf(*scratch));
    EXPECT_FALSE(scratch->ReadValue(u"Text"));
    EXPECT_EQ("2 Error reading registry value", ErrorOf(*scratch));
}

TEST_F(RegistryTest, ReadsWhatOthersHaveWritten) {
    Store(kScratch, L"List", REG_MULTI_SZ, L"a\0b\0", 10);
    Store(kScratch, L"Nothing", REG_BINARY, nullptr, 0);
    Store(kScratch, L"Unterminated", REG_SZ, L"COM4", 8);
    const Ref<RegistryKey> scratch = Scratch();
    ASSERT_TRUE(scratch);
    const auto list = scratch->ReadValue(u"List");
    ASSERT_TRUE(list);
    EXPECT_EQ(RegKind::Empty, list->kind);
    EXPECT_EQ("ok", ErrorOf(*scratch));
    EXPECT_FALSE(scratch->ReadValue(u"Nothing"));
    EXPECT_EQ("ok", ErrorOf(*scratch));
    EXPECT_EQ(u"COM4", scratch->ReadValue(u"Unterminated").value_or(RegValue()).text);
}

TEST_F(RegistryTest, EverythingFailsOnAKeyThatIsGone) {
    constexpr DWORD kGone = ERROR_KEY_DELETED;
    const Ref<RegistryKey> scratch = Scratch();
    ASSERT_TRUE(scratch);
    root_->DeleteSubkey(u"Software\\KavrelTest");
    ASSERT_EQ("ok", ErrorOf(*root_));
    const std::string code = std::to_string(kGone);
    EXPECT_FALSE(scratch->SubkeyNames());
    EXPECT_EQ(code + " Error reading subkey names", ErrorOf(*scratch));
    EXPECT_FALSE(scratch->ValueNames());
    EXPECT_EQ(code + " Error reading value names", ErrorOf(*scratch));
    EXPECT_FALSE(scratch->CreateSubkey(u"New"));
    EXPECT_EQ(code + " Error creating or opening subkey", ErrorOf(*scratch));
    scratch->SetInteger(u"New", 1);
    EXPECT_EQ(code + " Error setting value", ErrorOf(*scratch));
}

TEST_F(RegistryTest, ListsTheActivePorts) {
    EXPECT_TRUE(EnumeratePorts(PlatformRegistry(), true).empty());
    const std::wstring active = L"Drivers\\Active\\";
    StoreText(active + L"01", L"Name", L"COM4:");
    StoreText(active + L"01", L"Key", L"\\Drivers\\BuiltIn\\Serial");
    StoreText(L"Drivers\\BuiltIn\\Serial", L"FriendlyName", L"GPS on board");
    StoreText(active + L"02", L"Name", L"SER1:");
    StoreText(active + L"03", L"Name", L"COM1:");
    StoreText(active + L"04", L"Name", L"COM10:");
    Store(active + L"05", L"Name", REG_DWORD, L"CO", 4);
    using Ports = std::vector<ListedPort>;
    EXPECT_EQ((Ports{{u"COM4", 4}, {u"COM1", 1}}), EnumeratePorts(PlatformRegistry(), false));
    EXPECT_EQ((Ports{{u"COM4 GPS on board", 4}, {u"COM1", 1}}),
              EnumeratePorts(PlatformRegistry(), true));
}

TEST_F(RegistryTest, SwitchesTheBluetoothBrowser) {
    constexpr wchar_t kPort[] = L"Software\\Widcomm\\BtConfig\\Autoconnect\\0008";
    constexpr wchar_t kBrowser[] = L"BtBrowserEnabled";
    BluetoothAutoConnectTweak(PlatformRegistry(), 8, true, false, true);
    EXPECT_EQ("error 2", Stored(kPort, kBrowser));
    Store(kPort, L"Other", REG_DWORD, L"\1", 4);
    BluetoothAutoConnectTweak(PlatformRegistry(), 8, true, true, true);
    EXPECT_EQ("error 2", Stored(kPort, kBrowser));
    BluetoothAutoConnectTweak(PlatformRegistry(), 8, true, false, true);
    EXPECT_EQ("4: 0 0 0 0", Stored(kPort, kBrowser));
    BluetoothAutoConnectTweak(PlatformRegistry(), 8, false, false, true);
    EXPECT_EQ("4: 1 0 0 0", Stored(kPort, kBrowser));
}

}  // namespace

}  // namespace kavrel::tests
