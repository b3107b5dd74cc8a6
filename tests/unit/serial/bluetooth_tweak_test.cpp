#include "serial/bluetooth_tweak.h"

#include <gtest/gtest.h>

#include "platform/host/memory_registry.h"

namespace kavrel {
namespace {

constexpr std::u16string_view kSettings = u"SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008";
constexpr int kUntouched = -1;

// What the stack's setting is after the tweak.
int Browser(const MemoryRegistryStore& store) {
    const auto value = store.FindValue(kSettings, u"BtBrowserEnabled");
    if (!value) return kUntouched;
    EXPECT_EQ(kRegistryInteger, value->type);
    EXPECT_EQ(4U, value->data.size());
    return value->data.at(0);
}

TEST(BluetoothTweak, WritesOnlyForItsPortAndWhenItIsWanted) {
    const struct {
        std::int32_t port;
        bool beforeOpen;
        bool skip;
        bool browserOff;
        int browser;
    } kCases[] = {
        {8, true, false, true, 0},           {8, true, false, false, 1},
        {8, false, false, true, 1},          {8, false, false, false, 1},
        {8, true, true, true, kUntouched},   {8, false, true, true, kUntouched},
        {7, true, false, true, kUntouched},  {0, true, false, true, kUntouched},
        {80, true, false, true, kUntouched},
    };
    for (const auto& each : kCases) {
        MemoryRegistryStore store;
        store.AddKey(kSettings);
        BluetoothAutoConnectTweak(store, each.port, each.beforeOpen, each.skip, each.browserOff);
        EXPECT_EQ(each.browser, Browser(store)) << each.port << each.beforeOpen << each.skip;
        EXPECT_EQ(0U, store.OpenHandleCount());
    }
}

TEST(BluetoothTweak, DoesNothingWithoutTheStack) {
    MemoryRegistryStore store;
    BluetoothAutoConnectTweak(store, 8, true, false, true);
    EXPECT_FALSE(store.HasKey(u"SOFTWARE"));
    store.AddKey(kSettings);
    store.Fail(RegistryCall::SetValue, 5);
    BluetoothAutoConnectTweak(store, 8, true, false, true);
    EXPECT_EQ(kUntouched, Browser(store));
}

}  // namespace
}  // namespace kavrel
