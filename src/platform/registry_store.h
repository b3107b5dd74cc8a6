// RegistryStore: the operating system's registry. One method per platform call that the library
// makes, with the platform's result codes (0 is success); no logic.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavrel {

// An open key, or a predefined one.
using RegistryHandle = std::uintptr_t;

inline constexpr RegistryHandle kLocalMachine = 0x80000002;

// Result codes that callers know.
inline constexpr std::uint32_t kRegistryNotFound = 2;
inline constexpr std::uint32_t kRegistryNoMoreItems = 259;

// Value types. Others exist and are passed on as numbers.
inline constexpr std::uint32_t kRegistryText = 1;
inline constexpr std::uint32_t kRegistryBinary = 3;
inline constexpr std::uint32_t kRegistryInteger = 4;

// Nobody owns a store by this interface, so that the real one can be a constant without a
// destructor to run. Thread safety: every member may be called from any thread.
class RegistryStore {
  public:
    virtual std::uint32_t CreateKey(RegistryHandle key, std::u16string_view name,
                                    RegistryHandle& created) = 0;
    virtual std::uint32_t OpenKey(RegistryHandle key, std::u16string_view name,
                                  RegistryHandle& opened) = 0;
    virtual void CloseKey(RegistryHandle key) = 0;
    virtual std::uint32_t DeleteKey(RegistryHandle key, std::u16string_view name) = 0;
    virtual std::uint32_t DeleteValue(RegistryHandle key, std::u16string_view name) = 0;

    // Names by index from 0; kRegistryNoMoreItems behind the last. Names of up to 255 characters.
    virtual std::uint32_t EnumKey(RegistryHandle key, std::uint32_t index,
                                  std::u16string& name) = 0;
    virtual std::uint32_t EnumValue(RegistryHandle key, std::uint32_t index,
                                    std::u16string& name) = 0;

    // The first of the two steps of reading a value: its type and its size in bytes, 0 when it
    // fails.
    virtual std::uint32_t QueryValueSize(RegistryHandle key, std::u16string_view name,
                                         std::uint32_t& type, std::uint32_t& size) = 0;

    // The second: into `data`, which has that size and is cut to what was read.
    virtual std::uint32_t QueryValue(RegistryHandle key, std::u16string_view name,
                                     std::uint32_t& type, std::vector<std::uint8_t>& data) = 0;

    virtual std::uint32_t SetValue(RegistryHandle key, std::u16string_view name, std::uint32_t type,
                                   const void* data, std::uint32_t size) = 0;

  protected:
    ~RegistryStore() = default;
};

}  // namespace kavrel
