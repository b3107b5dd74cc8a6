#include "serial/port_list.h"

#include <gtest/gtest.h>

#include <ostream>

#include "platform/host/memory_registry.h"

namespace kavrel {

void PrintTo(const ListedPort& port, std::ostream* out) {
    *out << std::string(port.text.begin(), port.text.end()) << " = " << port.number;
}

namespace {

using Ports = std::vector<ListedPort>;

class PortListTest : public testing::Test {
  protected:
    void TearDown() override { EXPECT_EQ(0U, store_.OpenHandleCount()); }

    // An active driver: key "Drivers\Active\<id>".
    void AddDriver(std::u16string_view id, std::u16string_view name) {
        store_.AddText(Active(id), u"Name", name);
    }
    // Where the driver's own key is, and what it says.
    void AddDriverKey(std::u16string_view id, std::u16string_view path,
                      std::u16string_view friendlyName) {
        store_.AddText(Active(id), u"Key", path);
        store_.AddText(path, u"FriendlyName", friendlyName);
    }
    static std::u16string Active(std::u16string_view id) {
        return u"Drivers\\Active\\" + std::u16string(id);
    }

    MemoryRegistryStore store_;
};

TEST_F(PortListTest, IsEmptyWhereNothingCanBeRead) {
    EXPECT_EQ(Ports(), EnumeratePorts(store_, true));
    store_.AddKey(u"Drivers\\Active");
    EXPECT_EQ(Ports(), EnumeratePorts(store_, true));
    AddDriver(u"01", u"COM1:");
    AddDriver(u"02", u"COM2:");
    store_.Fail(RegistryCall::OpenKey, 5);
    EXPECT_EQ(Ports(), EnumeratePorts(store_, true));
    store_.Fail(RegistryCall::EnumKey, 5, 1);
    EXPECT_EQ(Ports(), EnumeratePorts(store_, true));
    EXPECT_EQ(2U, EnumeratePorts(store_, true).size());
}

TEST_F(PortListTest, ListsComPortsByTheirFirstFourCharacters) {
    AddDriver(u"01", u"COM4:");
    AddDriver(u"02", u"SER1:");
    AddDriver(u"03", u"COM1:");
    AddDriver(u"04", u"COM10:");
    AddDriver(u"05", u"com7:");
    AddDriver(u"06", u"COMM:");
    AddDriver(u"07", u"COM");
    AddDriver(u"08", u"CO");
    AddDriver(u"09", u"\\\\.\\COM5");
    AddDriver(u"10", u"");
    AddDriver(u"11", u"COM4:");
    AddDriver(u"12", u"COM\u0661:");  // a digit, but of another script
    store_.AddKey(Active(u"13"));
    store_.AddValue(Active(u"14"), u"Name", kRegistryInteger, {'C', 'O', 'M', '6'});
    AddDriver(u"15", u"COM2:");
    const Ports expected = {{u"COM4", 4}, {u"COM1", 1}, {u"com7", 7},
                            {u"COMM", 0}, {u"COM", -1}, {u"COM2", 2}};
    EXPECT_EQ(expected, EnumeratePorts(store_, false));
    EXPECT_EQ(expected, EnumeratePorts(store_, true));
}

TEST_F(PortListTest, SkipsADriverThatCannotBeRead) {
    for (const char16_t* id : {u"1", u"2", u"3"})
        AddDriver(id, u"COM" + std::u16string(id));
    const Ports kWithoutSecond = {{u"COM1", 1}, {u"COM3", 3}};
    store_.Fail(RegistryCall::OpenKey, 5, 2);
    EXPECT_EQ(kWithoutSecond, EnumeratePorts(store_, false));
    store_.Fail(RegistryCall::QueryValue, 5, 1);
    EXPECT_EQ(kWithoutSecond, EnumeratePorts(store_, false));
}

TEST_F(PortListTest, AddsTheFriendlyNameWhereThereIsOne) {
    AddDriver(u"1", u"COM4:");
    AddDriverKey(u"1", u"Drivers\\BuiltIn\\Serial", u"GPS on board");
    AddDriver(u"2", u"COM5:");
    AddDriverKey(u"2", u"\\Drivers\\Bluetooth", u"");
    AddDriver(u"3", u"COM6:");
    AddDriver(u"4", u"COM7:");
    store_.AddText(Active(u"4"), u"Key", u"Drivers\\Gone");
    AddDriver(u"5", u"COM8:");
    store_.AddText(Active(u"5"), u"Key", u"Drivers\\BuiltIn");
    AddDriver(u"6", u"COM9:");
    store_.AddValue(Active(u"6"), u"Key", kRegistryInteger, {1, 0, 0, 0});
    AddDriver(u"7", u"COM2:");
    store_.AddText(Active(u"7"), u"Key", u"Drivers\\Odd");
    store_.AddValue(u"Drivers\\Odd", u"FriendlyName", kRegistryBinary, {1});
    EXPECT_EQ((Ports{{u"COM4 GPS on board", 4},
                     {u"COM5 ", 5},
                     {u"COM6", 6},
                     {u"COM7", 7},
                     {u"COM8", 8},
                     {u"COM9", 9},
                     {u"COM2", 2}}),
              EnumeratePorts(store_, true));
    EXPECT_EQ((ListedPort{u"COM4", 4}), EnumeratePorts(store_, false).at(0));
}

TEST(PortNumberIn, ReadsTheNumberBehindTheName) {
    const struct {
        std::u16string_view name;
        std::int32_t number;
    } kCases[] = {
        {u"COM4", 4},       {u"COM12:", 12},    {u"com3", 3},  {u"COM:", 0}, {u"\\\\.\\COM14", 14},
        {u"\\\\.\\COM", 0}, {u"\\\\.\\CO", -1}, {u"LPT1", -1}, {u"COM", -1}, {u"", -1},
    };
    for (const auto& each : kCases)
        EXPECT_EQ(each.number, PortNumberIn(each.name))
            << std::string(each.name.begin(), each.name.end());
}

}  // namespace
}  // namespace kavrel
