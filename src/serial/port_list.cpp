#include "serial/port_list.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "base/number.h"
#include "base/record.h"
#include "serial/registry_key.h"

namespace kavrel {
namespace {

constexpr std::u16string_view kActiveDrivers = u"Drivers\\Active";
constexpr std::u16string_view kPort = u"COM";
constexpr std::u16string_view kDevicePort = u"\\\\.\\COM";

char16_t UpperCase(char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - u'a' + u'A') : c;
}

bool BeginsWith(std::u16string_view text, std::u16string_view beginning) {
    return text.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), text.begin(),
                      [](char16_t expected, char16_t c) { return expected == UpperCase(c); });
}

// Digits are ASCII; anything else ends the number, whatever becomes of it here.
std::int32_t IntegerIn(std::u16string_view text) {
    std::string narrow;
    for (const char16_t c : text)
        narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    return ReadInteger(narrow);
}

std::optional<std::u16string> ReadText(RegistryKey& key, std::u16string_view name) {
    std::optional<RegValue> value = key.ReadValue(name);
    if (!value || value->kind != RegKind::Text) return std::nullopt;
    return std::move(value->text);
}

std::optional<std::u16string> FriendlyName(RegistryKey& root, RegistryKey& driver) {
    const std::optional<std::u16string> path = ReadText(driver, u"Key");
    if (!path) return std::nullopt;
    const Ref<RegistryKey> key = root.OpenSubkey(*path);
    return key ? ReadText(*key, u"FriendlyName") : std::nullopt;
}

std::optional<ListedPort> PortOf(RegistryKey& root, RegistryKey& driver, bool withFriendlyName) {
    std::optional<std::u16string> name = ReadText(driver, u"Name");
    if (!name || !BeginsWith(*name, kPort)) return std::nullopt;
    constexpr std::size_t kUsedCharacters = 4;
    name->resize(std::min(name->size(), kUsedCharacters));

    ListedPort port{*name, PortNumberIn(*name)};
    if (!withFriendlyName) return port;
    if (const std::optional<std::u16string> friendly = FriendlyName(root, driver))
        port.text.append(u" ").append(*friendly);
    return port;
}

}  // namespace

std::vector<ListedPort> EnumeratePorts(RegistryStore& store, bool withFriendlyNames) {
    std::vector<ListedPort> ports;
    const Ref<RegistryKey> root = RegistryKey::LocalMachine(store);
    const Ref<RegistryKey> active = root->OpenSubkey(kActiveDrivers);
    if (!active) return ports;

    for (const std::u16string& name : active->SubkeyNames().value_or(RegistryKey::Names())) {
        const Ref<RegistryKey> driver = active->OpenSubkey(name);
        if (!driver) continue;
        std::optional<ListedPort> port = PortOf(*root, *driver, withFriendlyNames);
        if (!port) continue;
        const bool isListed = std::any_of(
            ports.begin(), ports.end(),
            [&port](const ListedPort& listed) { return listed.number == port->number; });
        if (!isListed) ports.push_back(std::move(*port));
    }
    return ports;
}

std::int32_t PortNumberIn(std::u16string_view name) {
    constexpr std::size_t kShortest = 4;
    if (name.size() < kShortest) return -1;
    if (BeginsWith(name, kPort)) return IntegerIn(name.substr(kPort.size()));
    if (BeginsWith(name, kDevicePort)) return IntegerIn(name.substr(kDevicePort.size()));
    return -1;
}

}  // namespace kavrel
