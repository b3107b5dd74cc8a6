#include "nmea/field_list.h"

#include <algorithm>

namespace kavrel {
namespace {

constexpr auto kIsBefore = [](const auto& entry, std::int32_t number) {
    return entry.number < number;
};

}  // namespace

std::string_view FieldList::Find(std::int32_t number) const {
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), number, kIsBefore);
    if (at == entries_.end() || at->number != number) return {};
    return at->text;
}

void FieldList::Set(std::int32_t number, std::string_view text) {
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), number, kIsBefore);
    if (at != entries_.end() && at->number == number) {
        at->text = text;
    } else {
        entries_.insert(at, Entry{number, std::string(text)});
    }
}

}  // namespace kavrel
