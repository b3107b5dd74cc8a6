#include "platform/host/memory_registry.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kavrel {
namespace {

constexpr std::uint32_t kAccessDenied = 5;
constexpr std::uint32_t kInvalidHandle = 6;
constexpr std::uint32_t kMoreData = 234;

std::u16string LowerCase(std::u16string_view text) {
    std::u16string lower(text);
    for (char16_t& c : lower) {
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    }
    return lower;
}

std::vector<std::u16string> NamesIn(std::u16string_view path) {
    std::vector<std::u16string> names;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(u'\\'), path.size());
        if (end > 0) names.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return names;
}

// The name of the entry with this index in a map of keys or values.
template <typename Entries, typename NameOf>
std::uint32_t NameAt(const Entries& entries, std::uint32_t index, NameOf nameOf,
                     std::u16string& name) {
    if (index >= entries.size()) return kRegistryNoMoreItems;
    name = nameOf(std::next(entries.begin(), index)->second);
    return 0;
}

}  // namespace

void MemoryRegistryStore::AddKey(std::u16string_view path) {
    const std::lock_guard lock(mutex_);
    Make(root_, path);
}

void MemoryRegistryStore::AddValue(std::u16string_view path, std::u16string_view name,
                                   std::uint32_t type, std::vector<std::uint8_t> data) {
    const std::lock_guard lock(mutex_);
    Make(root_, path)->values[LowerCase(name)] = {std::u16string(name), type, std::move(data)};
}

void MemoryRegistryStore::AddText(std::u16string_view path, std::u16string_view name,
                                  std::u16string_view text) {
    const std::u16string terminated(text);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(terminated.c_str());
    AddValue(path, name, kRegistryText, {bytes, bytes + (text.size() + 1) * sizeof(char16_t)});
}

bool MemoryRegistryStore::HasKey(std::u16string_view path) const {
    const std::lock_guard lock(mutex_);
    return Find(root_, path) != nullptr;
}

std::optional<MemoryRegistryStore::Value> MemoryRegistryStore::FindValue(
    std::u16string_view path, std::u16string_view name) const {
    const std::lock_guard lock(mutex_);
    const KeyRef key = Find(root_, path);
    if (key == nullptr) return std::nullopt;
    const auto found = key->values.find(LowerCase(name));
    if (found == key->values.end()) return std::nullopt;
    return found->second;
}

void MemoryRegistryStore::Fail(RegistryCall call, std::uint32_t result, int skipped) {
    const std::lock_guard lock(mutex_);
    failure_ = {.call = call, .result = result, .skipped = skipped};
}

std::size_t MemoryRegistryStore::OpenHandleCount() const {
    const std::lock_guard lock(mutex_);
    return handles_.size();
}

std::size_t MemoryRegistryStore::CallCount() const {
    const std::lock_guard lock(mutex_);
    return callCount_;
}

std::uint32_t MemoryRegistryStore::CreateKey(RegistryHandle key, std::u16string_view name,
                                             RegistryHandle& created) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::CreateKey, key, parent)) return result;
    created = NewHandle(Make(parent, name));
    return 0;
}

std::uint32_t MemoryRegistryStore::OpenKey(RegistryHandle key, std::u16string_view name,
                                           RegistryHandle& opened) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::OpenKey, key, parent)) return result;
    KeyRef found = Find(parent, name);
    if (found == nullptr) return kRegistryNotFound;
    opened = NewHandle(std::move(found));
    return 0;
}

void MemoryRegistryStore::CloseKey(RegistryHandle key) {
    const std::lock_guard lock(mutex_);
    handles_.erase(key);
}

std::uint32_t MemoryRegistryStore::DeleteKey(RegistryHandle key, std::u16string_view name) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::DeleteKey, key, parent)) return result;
    const KeyRef found = Find(parent, name);
    if (found == nullptr) return kRegistryNotFound;
    if (found == parent || !found->subkeys.empty()) return kAccessDenied;
    std::u16string_view path = name;
    const std::size_t separator = path.rfind(u'\\');
    if (separator != path.npos) parent = Find(parent, path.substr(0, separator));
    parent->subkeys.erase(LowerCase(found->name));
    return 0;
}

std::uint32_t MemoryRegistryStore::DeleteValue(RegistryHandle key, std::u16string_view name) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::DeleteValue, key, parent)) return result;
    return parent->values.erase(LowerCase(name)) != 0 ? 0 : kRegistryNotFound;
}

std::uint32_t MemoryRegistryStore::EnumKey(RegistryHandle key, std::uint32_t index,
                                           std::u16string& name) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::EnumKey, key, parent)) return result;
    return NameAt(
        parent->subkeys, index, [](const KeyRef& subkey) { return subkey->name; }, name);
}

std::uint32_t MemoryRegistryStore::EnumValue(RegistryHandle key, std::uint32_t index,
                                             std::u16string& name) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::EnumValue, key, parent)) return result;
    return NameAt(
        parent->values, index, [](const Value& value) { return value.name; }, name);
}

std::uint32_t MemoryRegistryStore::QueryValueSize(RegistryHandle key, std::u16string_view name,
                                                  std::uint32_t& type, std::uint32_t& size) {
    const std::lock_guard lock(mutex_);
    const Value* value = nullptr;
    if (const std::uint32_t result =
            BeginWithValue(RegistryCall::QueryValueSize, key, name, value)) {
        return result;
    }
    type = value->type;
    size = static_cast<std::uint32_t>(value->data.size());
    return 0;
}

std::uint32_t MemoryRegistryStore::QueryValue(RegistryHandle key, std::u16string_view name,
                                              std::uint32_t& type,
                                              std::vector<std::uint8_t>& data) {
    const std::lock_guard lock(mutex_);
    const Value* value = nullptr;
    if (const std::uint32_t result = BeginWithValue(RegistryCall::QueryValue, key, name, value))
        return result;
    if (value->data.size() > data.size()) return kMoreData;
    type = value->type;
    data = value->data;
    return 0;
}

std::uint32_t MemoryRegistryStore::SetValue(RegistryHandle key, std::u16string_view name,
                                            std::uint32_t type, const void* data,
                                            std::uint32_t size) {
    const std::lock_guard lock(mutex_);
    KeyRef parent;
    if (const std::uint32_t result = Begin(RegistryCall::SetValue, key, parent)) return result;
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    parent->values[LowerCase(name)] = {std::u16string(name), type, {bytes, bytes + size}};
    return 0;
}

// Counts the call, fails it when it is its turn, and finds the key of the handle.
std::uint32_t MemoryRegistryStore::Begin(RegistryCall call, RegistryHandle handle, KeyRef& key) {
    ++callCount_;
    if (failure_ && failure_->call == call && failure_->skipped-- == 0) {
        const std::uint32_t result = failure_->result;
        failure_.reset();
        return result;
    }
    const auto found = handles_.find(handle);
    key = handle == kLocalMachine ? root_ : found != handles_.end() ? found->second : nullptr;
    return key != nullptr ? 0 : kInvalidHandle;
}

std::uint32_t MemoryRegistryStore::BeginWithValue(RegistryCall call, RegistryHandle handle,
                                                  std::u16string_view name, const Value*& value) {
    KeyRef key;
    if (const std::uint32_t result = Begin(call, handle, key)) return result;
    const auto found = key->values.find(LowerCase(name));
    if (found == key->values.end()) return kRegistryNotFound;
    value = &found->second;
    return 0;
}

RegistryHandle MemoryRegistryStore::NewHandle(KeyRef key) {
    handles_[nextHandle_] = std::move(key);
    return nextHandle_++;
}

MemoryRegistryStore::KeyRef MemoryRegistryStore::Find(const KeyRef& key, std::u16string_view path) {
    KeyRef found = key;
    for (const std::u16string& name : NamesIn(path)) {
        const auto next = found->subkeys.find(LowerCase(name));
        if (next == found->subkeys.end()) return nullptr;
        found = next->second;
    }
    return found;
}

MemoryRegistryStore::KeyRef MemoryRegistryStore::Make(KeyRef key, std::u16string_view path) {
    for (const std::u16string& name : NamesIn(path)) {
        KeyRef& next = key->subkeys[LowerCase(name)];
        if (next == nullptr) {
            next = std::make_shared<Key>();
            next->name = name;
        }
        key = KeyRef(next);
    }
    return key;
}

}  // namespace kavrel
