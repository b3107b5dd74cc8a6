#include "serial/registry_key.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace kavrel {
namespace {

// A stored text ends at its terminator, or where its bytes do.
std::u16string TextIn(const std::vector<std::uint8_t>& data) {
    std::u16string text(data.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), data.data(), text.size() * sizeof(char16_t));
    text.resize(std::min(text.find(u'\0'), text.size()));
    return text;
}

std::uint32_t IntegerIn(const std::vector<std::uint8_t>& data) {
    std::uint32_t integer = 0;
    std::memcpy(&integer, data.data(), std::min(data.size(), sizeof integer));
    return integer;
}

RegValue ValueOf(std::uint32_t type, std::vector<std::uint8_t> data) {
    switch (type) {
        case kRegistryText:
            return RegValue::OfText(TextIn(data));
        case kRegistryInteger:
            return RegValue::OfInteger(IntegerIn(data));
        case kRegistryBinary:
            return RegValue::OfBytes(MakeRef<ByteBlock>(std::move(data)));
        default:
            return {};
    }
}

bool HasContent(const RegValue* value) {
    if (value == nullptr || value->kind == RegKind::Empty) return false;
    return value->kind != RegKind::Bytes || value->bytes;
}

}  // namespace

RegValue RegValue::OfText(std::u16string_view text) {
    RegValue value;
    value.kind = RegKind::Text;
    value.text = text;
    return value;
}

RegValue RegValue::OfInteger(std::uint32_t integer) {
    RegValue value;
    value.kind = RegKind::Integer;
    value.integer = integer;
    return value;
}

RegValue RegValue::OfBytes(Ref<ByteBlock> bytes) {
    RegValue value;
    value.kind = RegKind::Bytes;
    value.bytes = std::move(bytes);
    return value;
}

Ref<RegistryKey> RegistryKey::LocalMachine(RegistryStore& store) {
    return MakeRef<RegistryKey>(store, kLocalMachine);
}

RegistryKey::~RegistryKey() {
    if (handle_ != kLocalMachine) store_.CloseKey(handle_);
}

Ref<RegistryKey> RegistryKey::CreateSubkey(std::u16string_view name) {
    return Open(name, &RegistryStore::CreateKey, Message::SubkeyNotCreated);
}

Ref<RegistryKey> RegistryKey::OpenSubkey(std::u16string_view name) {
    return Open(name, &RegistryStore::OpenKey, Message::SubkeyNotOpened);
}

Ref<RegistryKey> RegistryKey::Open(std::u16string_view name, OpenCall call, Message failure) {
    if (!IsGiven(name)) return nullptr;
    RegistryHandle opened = 0;
    const std::uint32_t result = (store_.*call)(handle_, name, opened);
    error().Set(result, failure);
    if (result != 0) return nullptr;
    return MakeRef<RegistryKey>(store_, opened);
}

void RegistryKey::DeleteSubkey(std::u16string_view name) {
    if (IsGiven(name)) error().Set(store_.DeleteKey(handle_, name), Message::SubkeyNotDeleted);
}

void RegistryKey::DeleteValue(std::u16string_view name) {
    if (IsGiven(name)) error().Set(store_.DeleteValue(handle_, name), Message::ValueNotDeleted);
}

std::optional<RegistryKey::Names> RegistryKey::SubkeyNames() {
    return Enumerate(&RegistryStore::EnumKey, Message::SubkeyNamesFailed);
}

std::optional<RegistryKey::Names> RegistryKey::ValueNames() {
    return Enumerate(&RegistryStore::EnumValue, Message::ValueNamesFailed);
}

std::optional<RegistryKey::Names> RegistryKey::Enumerate(EnumCall call, Message failure) {
    error().Clear();
    Names names;
    for (std::uint32_t index = 0;; ++index) {
        std::u16string name;
        const std::uint32_t result = (store_.*call)(handle_, index, name);
        if (result == kRegistryNoMoreItems) return names;
        if (result != 0) {
            error().Set(result, failure);
            return std::nullopt;
        }
        names.push_back(std::move(name));
    }
}

std::optional<RegValue> RegistryKey::ReadValue(std::u16string_view name) {
    if (!IsGiven(name)) return std::nullopt;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    std::vector<std::uint8_t> data;
    std::uint32_t result = store_.QueryValueSize(handle_, name, type, size);
    const bool hasData = size != 0;
    if (hasData) {
        data.resize(size);
        result = store_.QueryValue(handle_, name, type, data);
    }
    error().Set(result, Message::ValueNotRead);
    if (!hasData || result != 0) return std::nullopt;
    return ValueOf(type, std::move(data));
}

void RegistryKey::SetValue(std::u16string_view name, const RegValue* value) {
    if (!IsGiven(name)) return;
    if (!HasContent(value)) {
        error().Set(kErrorInvalidArgument, Message::InvalidParameter);
        return;
    }
    std::uint32_t type = kRegistryInteger;
    const void* data = &value->integer;
    std::size_t size = sizeof value->integer;
    if (value->kind == RegKind::Text) {
        type = kRegistryText;
        data = value->text.c_str();
        size = (value->text.size() + 1) * sizeof(char16_t);
    } else if (value->kind == RegKind::Bytes) {
        type = kRegistryBinary;
        data = value->bytes->bytes().data();
        size = value->bytes->bytes().size();
    }
    error().Set(store_.SetValue(handle_, name, type, data, static_cast<std::uint32_t>(size)),
                Message::ValueNotSet);
}

void RegistryKey::SetInteger(std::u16string_view name, std::uint32_t integer) {
    const RegValue value = RegValue::OfInteger(integer);
    SetValue(name, &value);
}

void RegistryKey::SetText(std::u16string_view name, std::u16string_view text) {
    const RegValue value = RegValue::OfText(text);
    SetValue(name, text.data() != nullptr ? &value : nullptr);
}

// Begins an operation: clears the slot, and refuses a missing name.
bool RegistryKey::IsGiven(std::u16string_view name) {
    error().Clear();
    if (name.data() != nullptr) return true;
    error().Set(kErrorInvalidArgument, Message::InvalidParameter);
    return false;
}

}  // namespace kavrel
