#include "serial/port_list.h"

#include <gmock/gmock.h>

#include "platform/host/memory_registry.h"

namespace kavrel {

void PrintTo(const ListedPort& port, std::ostream* out) {
    *out << std::string(port.text.begin(), port.text.end()) << " = " << port.number;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PortListTest : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(0U, store_.OpenHandleCount()); }

    // An active driver's key, below those of the drivers before it.
    std::u16string AddKey() {
        const std::u16string key = std::u16string(u"Drivers\\Active\\") + ++lastId_;
        store_.AddKey(key);
        return key;
    }
    std::u16string AddDriver(std::u16string_view name) {
        const std::u16string key = AddKey();
        store_.AddText(key, u"Name", name);
        return key;
    }
    void AddDriver(std::u16string_view name, std::u16string_view ownKey) {
        store_.AddText(AddDriver(name), u"Key", ownKey);
    }

    MemoryRegistryStore store_;
    char16_t lastId_ = u'A';
};

TEST_F(PortListTest, IsEmptyWhereNothingCanBeRead) {
    EXPECT_THAT(EnumeratePorts(store_, true), IsEmpty());
    store_.AddKey(u"Drivers\\Active");
    EXPECT_THAT(EnumeratePorts(store_, true), IsEmpty());
    AddDriver(u"COM1:");
    AddDriver(u"COM2:");
    store_.Fail(RegistryCall::OpenKey, 5);
    EXPECT_THAT(EnumeratePorts(store_, true), IsEmpty());
    store_.Fail(RegistryCall::EnumKey, 5, 1);
    EXPECT_THAT(EnumeratePorts(store_, true), IsEmpty());
}

TEST_F(PortListTest, ListsComPortsByTheirFirstFourCharacters) {
    for (const char16_t* name : {u"COM4:", u"SER1:", u"COM1:", u"COM10:", u"com7:", u"COMM:",
                                 u"COM", u"CO", u"\\\\.\\COM5", u"", u"COM4:"})
        AddDriver(name);
    AddDriver(u"COM\u0139:");  // no digit, though its low byte is that of 9
    AddKey();
    store_.AddValue(AddKey(), u"Name", kRegistryInteger, {'C', 'O', 'M', '6'});
    AddDriver(u"COM2:");
    for (const bool withFriendlyNames : {false, true}) {
        EXPECT_THAT(
            EnumeratePorts(store_, withFriendlyNames),
            ElementsAre(ListedPort{u"COM4", 4}, ListedPort{u"COM1", 1}, ListedPort{u"com7", 7},
                        ListedPort{u"COMM", 0}, ListedPort{u"COM", -1}, ListedPort{u"COM2", 2}));
    }
}

TEST_F(PortListTest, SkipsADriverThatCannotBeRead) {
    for (const char16_t* name : {u"COM1", u"COM2", u"COM3"})
        AddDriver(name);
    for (const auto& [call, skipped] :
         {std::pair(RegistryCall::OpenKey, 2), std::pair(RegistryCall::QueryValue, 1)}) {
        store_.Fail(call, 5, skipped);
        EXPECT_THAT(EnumeratePorts(store_, false),
                    ElementsAre(ListedPort{u"COM1", 1}, ListedPort{u"COM3", 3}));
    }
}

TEST_F(PortListTest, AddsTheFriendlyNameWhereThereIsOne) {
    store_.AddText(u"Drivers\\BuiltIn\\Serial", u"FriendlyName", u"GPS on board");
    store_.AddText(u"Drivers\\Bluetooth", u"FriendlyName", u"");
    store_.AddValue(u"Drivers\\Odd", u"FriendlyName", kRegistryBinary, {1});
    AddDriver(u"COM4:", u"Drivers\\BuiltIn\\Serial");
    AddDriver(u"COM5:", u"\\Drivers\\Bluetooth");
    AddDriver(u"COM6:");
    AddDriver(u"COM7:", u"Drivers\\Gone");
    AddDriver(u"COM8:", u"Drivers\\BuiltIn");
    store_.AddValue(AddDriver(u"COM9:"), u"Key", kRegistryInteger, {1, 0, 0, 0});
    AddDriver(u"COM2:", u"Drivers\\Odd");
    EXPECT_THAT(EnumeratePorts(store_, true),
                ElementsAre(ListedPort{u"COM4 GPS on board", 4}, ListedPort{u"COM5 ", 5},
                            ListedPort{u"COM6", 6}, ListedPort{u"COM7", 7}, ListedPort{u"COM8", 8},
                            ListedPort{u"COM9", 9}, ListedPort{u"COM2", 2}));
    EXPECT_EQ((ListedPort{u"COM4", 4}), EnumeratePorts(store_, false).at(0));
}

TEST(PortNumberIn, ReadsTheNumberBehindTheName) {
    const std::pair<std::u16string_view, std::int32_t> kCases[] = {
        {u"COM4", 4},       {u"COM12:", 12},    {u"com3", 3},  {u"COM:", 0}, {u"\\\\.\\COM14", 14},
        {u"\\\\.\\COM", 0}, {u"\\\\.\\CO", -1}, {u"LPT1", -1}, {u"COM", -1}, {u"", -1},
    };
    for (const auto& [name, number] : kCases)
        EXPECT_EQ(number, PortNumberIn(name)) << std::string(name.begin(), name.end());
}

}  // namespace
}  // namespace kavrel
