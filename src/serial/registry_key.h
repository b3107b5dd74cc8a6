// RegistryKey: an open key of the registry, with typed values and errors in the record's slot.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/byte_block.h"
#include "base/record.h"
#include "platform/registry_store.h"

namespace kavrel {

enum class RegKind : std::uint32_t { Empty = 0, Text = 1, Integer = 2, Bytes = 4 };

// A value. Only the member of its kind means something; an empty one stands for a value of a type
// that is none of these.
struct RegValue {
    RegKind kind = RegKind::Empty;
    std::u16string text;
    std::uint32_t integer = 0;
    Ref<ByteBlock> bytes;

    static RegValue OfText(std::u16string_view text);
    static RegValue OfInteger(std::uint32_t integer);
    static RegValue OfBytes(Ref<ByteBlock> bytes);
};

// Every operation clears the error slot first. A failure of the platform leaves the platform's
// result and the text that stands at the operation; a missing name or text (a default-made view,
// not an empty one) or a missing value leaves 10003 "Invalid parameter!". Thread safety: none; a
// key belongs to one thread at a time. Invariants: a key that was opened or created is closed with
// its last reference.
class RegistryKey final : public Record {
  public:
    using Names = std::vector<std::u16string>;

    // HKEY_LOCAL_MACHINE, which is never closed. The store outlives every key.
    static Ref<RegistryKey> LocalMachine(RegistryStore& store);

    ~RegistryKey() override;

    // "Error creating or opening subkey". Null when it fails.
    Ref<RegistryKey> CreateSubkey(std::u16string_view name);

    // "Error opening subkey". Null when it fails.
    Ref<RegistryKey> OpenSubkey(std::u16string_view name);

    // "Error deleting register subkey".
    void DeleteSubkey(std::u16string_view name);

    // "Error deleting register value".
    void DeleteValue(std::u16string_view name);

    // "Error reading subkey names" and "Error reading value names". Names in the registry's order;
    // nothing, not even what was read so far, when it fails.
    std::optional<Names> SubkeyNames();
    std::optional<Names> ValueNames();

    // "Error reading registry value". Nothing when it fails, and nothing, without an error, for a
    // value of size 0.
    std::optional<RegValue> ReadValue(std::u16string_view name);

    // "Error setting value". A null or empty value is missing.
    void SetValue(std::u16string_view name, const RegValue* value);
    void SetInteger(std::u16string_view name, std::uint32_t integer);
    void SetText(std::u16string_view name, std::u16string_view text);

  private:
    template <typename T, typename... Args>
    friend Ref<T> MakeRef(Args&&... args);

    using OpenCall = std::uint32_t (RegistryStore::*)(RegistryHandle, std::u16string_view,
                                                      RegistryHandle&);
    using EnumCall = std::uint32_t (RegistryStore::*)(RegistryHandle, std::uint32_t,
                                                      std::u16string&);

    RegistryKey(RegistryStore& store, RegistryHandle handle) : store_(store), handle_(handle) {}

    bool IsGiven(std::u16string_view name);
    Ref<RegistryKey> Open(std::u16string_view name, OpenCall call, Message failure);
    std::optional<Names> Enumerate(EnumCall call, Message failure);

    RegistryStore& store_;
    const RegistryHandle handle_;
};

}  // namespace kavrel
