// MemoryRegistryStore: a registry that a test makes, looks at and breaks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/registry_store.h"

namespace kavrel {

enum class RegistryCall : std::uint8_t {
    CreateKey,
    OpenKey,
    DeleteKey,
    DeleteValue,
    EnumKey,
    EnumValue,
    QueryValueSize,
    QueryValue,
    SetValue,
};

// Follows the platform's rules: upper and lower case are the same and names are
// enumerated in alphabetical order, a missing key or value is 2, a key with subkeys cannot be
// deleted (5), a closed handle is 6. A path may begin with a backslash, as on a device. Thread
// safety: every member may be called from any thread.
class MemoryRegistryStore final : public RegistryStore {
  public:
    struct Value {
        std::u16string name;
        std::uint32_t type = 0;
        std::vector<std::uint8_t> data;

        bool operator==(const Value&) const = default;
    };

    // The test's side: paths are below the local machine. Adding a value makes its key.
    void AddKey(std::u16string_view path);
    void AddValue(std::u16string_view path, std::u16string_view name, std::uint32_t type,
                  std::vector<std::uint8_t> data);
    void AddText(std::u16string_view path, std::u16string_view name, std::u16string_view text);
    bool HasKey(std::u16string_view path) const;
    std::optional<Value> FindValue(std::u16string_view path, std::u16string_view name) const;

    // The next call of this kind but `skipped`, and no other, fails with this result.
    void Fail(RegistryCall call, std::uint32_t result, int skipped = 0);

    // Keys that were opened or created and not closed.
    std::size_t OpenHandleCount() const;

    // How many calls of RegistryStore were made, closing keys not counted.
    std::size_t CallCount() const;

    std::uint32_t CreateKey(RegistryHandle key, std::u16string_view name,
                            RegistryHandle& created) override;
    std::uint32_t OpenKey(RegistryHandle key, std::u16string_view name,
                          RegistryHandle& opened) override;
    void CloseKey(RegistryHandle key) override;
    std::uint32_t DeleteKey(RegistryHandle key, std::u16string_view name) override;
    std::uint32_t DeleteValue(RegistryHandle key, std::u16string_view name) override;
    std::uint32_t EnumKey(RegistryHandle key, std::uint32_t index, std::u16string& name) override;
    std::uint32_t EnumValue(RegistryHandle key, std::uint32_t index, std::u16string& name) override;
    std::uint32_t QueryValueSize(RegistryHandle key, std::u16string_view name, std::uint32_t& type,
                                 std::uint32_t& size) override;
    std::uint32_t QueryValue(RegistryHandle key, std::u16string_view name, std::uint32_t& type,
                             std::vector<std::uint8_t>& data) override;
    std::uint32_t SetValue(RegistryHandle key, std::u16string_view name, std::uint32_t type,
                           const void* data, std::uint32_t size) override;

  private:
    // Subkeys and values stand under their names in lower case. A deleted key lives on for the
    // handles that are open on it.
    struct Key {
        std::u16string name;
        std::map<std::u16string, std::shared_ptr<Key>> subkeys;
        std::map<std::u16string, Value> values;
    };
    using KeyRef = std::shared_ptr<Key>;

    struct Failure {
        RegistryCall call;
        std::uint32_t result;
        int skipped;
    };

    std::uint32_t Begin(RegistryCall call, RegistryHandle handle, KeyRef& key);
    std::uint32_t BeginWithValue(RegistryCall call, RegistryHandle handle, std::u16string_view name,
                                 const Value*& value);
    RegistryHandle NewHandle(KeyRef key);
    static KeyRef Find(const KeyRef& key, std::u16string_view path);
    static KeyRef Make(KeyRef key, std::u16string_view path);

    mutable std::mutex mutex_;
    KeyRef root_ = std::make_shared<Key>();
    std::map<RegistryHandle, KeyRef> handles_;
    RegistryHandle nextHandle_ = 1;
    std::optional<Failure> failure_;
    std::size_t callCount_ = 0;
};

}  // namespace kavrel
