#include "nmea/field_list.h"

#include <algorithm>
#include <utility>

namespace kavrel {
namespace {

constexpr auto kIsBefore = [](const auto& entry, std::int32_t number) {
    return entry.number < number;
};

}  // namespace

TextView FieldList::Find(std::int32_t number) const {
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), number, kIsBefore);
    if (at == entries_.end() || at->number != number) return {};
    return {at->text, at->wideText};
}

void FieldList::Set(std::int32_t number, const TextView& text) {
    // Made first: the text may be one of the list.
    Entry entry{.number = number, .text = std::string(text.narrow), .wideText = {}};
    if (NeedsWide(text.wide)) entry.wideText = text.wide;
    const auto at = std::lower_bound(entries_.begin(), entries_.end(), number, kIsBefore);
    if (at != entries_.end() && at->number == number) {
        *at = std::move(entry);
    } else {
        entries_.insert(at, std::move(entry));
    }
}

bool FieldList::HasWideText() const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [](const Entry& entry) { return !entry.wideText.empty(); });
}

}  // namespace kavrel
