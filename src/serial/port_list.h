// The device's active COM ports, as its registry lists them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry_store.h"

namespace kavrel {

// A port that an active driver offers.
struct ListedPort {
    std::u16string text;  // "COM4", or "COM4 <friendly name>"
    std::int32_t number = 0;
};

// In the registry's order, each number once. Only the first four characters of a driver's name
// count, so that COM10: is taken for COM1. A registry that cannot be read gives an empty list.
// With friendly names, a port whose driver has none keeps its bare name.
std::vector<ListedPort> EnumeratePorts(RegistryStore& store, bool withFriendlyNames);

// The number in "COM4..." or "\\.\COM4..."; 0 when there are no digits, -1 for any other name and
// for one of less than four characters. Upper and lower case are the same.
std::int32_t PortNumberIn(std::u16string_view name);

}  // namespace kavrel
