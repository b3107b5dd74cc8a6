#include "platform/win32/registry_store.h"

#include <array>

#include "platform/win32/device.h"

namespace kavrel {
namespace {

static_assert(kRegistryNotFound == ERROR_FILE_NOT_FOUND);
static_assert(kRegistryNoMoreItems == ERROR_NO_MORE_ITEMS);
static_assert(kRegistryText == REG_SZ && kRegistryBinary == REG_BINARY);
static_assert(kRegistryInteger == REG_DWORD);

constexpr DWORD kNameCapacity = 256;

// The platform's own constant is sign-extended to the width of a handle.
HKEY KeyOf(RegistryHandle handle) {
    if (handle == kLocalMachine) return HKEY_LOCAL_MACHINE;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the engine knows a handle as a number
    return reinterpret_cast<HKEY>(handle);
}

// Zero-terminated, as the platform wants it.
std::wstring Wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}

std::uint32_t Code(LSTATUS status) {
    return static_cast<std::uint32_t>(status);
}

void Assign(std::u16string& name, const wchar_t* text, DWORD length) {
    name.assign(text, text + length);
}

class Win32RegistryStore final : public RegistryStore {
  public:
    std::uint32_t CreateKey(RegistryHandle key, std::u16string_view name,
                            RegistryHandle& created) override {
        HKEY opened = nullptr;
        DWORD disposition = 0;
        const LSTATUS status = RegCreateKeyExW(KeyOf(key), KeyPath(Wide(name).c_str()), 0, nullptr,
                                               0, kRegistryAccess, nullptr, &opened, &disposition);
        created = reinterpret_cast<RegistryHandle>(opened);
        return Code(status);
    }

    std::uint32_t OpenKey(RegistryHandle key, std::u16string_view name,
                          RegistryHandle& opened) override {
        HKEY handle = nullptr;
        const LSTATUS status =
            RegOpenKeyExW(KeyOf(key), KeyPath(Wide(name).c_str()), 0, kRegistryAccess, &handle);
        opened = reinterpret_cast<RegistryHandle>(handle);
        return Code(status);
    }

    void CloseKey(RegistryHandle key) override { RegCloseKey(KeyOf(key)); }

    std::uint32_t DeleteKey(RegistryHandle key, std::u16string_view name) override {
        return Code(RegDeleteKeyW(KeyOf(key), KeyPath(Wide(name).c_str())));
    }

    std::uint32_t DeleteValue(RegistryHandle key, std::u16string_view name) override {
        return Code(RegDeleteValueW(KeyOf(key), Wide(name).c_str()));
    }

    std::uint32_t EnumKey(RegistryHandle key, std::uint32_t index, std::u16string& name) override {
        std::array<wchar_t, kNameCapacity> buffer;
        DWORD length = kNameCapacity;
        const LSTATUS status = RegEnumKeyExW(KeyOf(key), index, buffer.data(), &length, nullptr,
                                             nullptr, nullptr, nullptr);
        if (status == ERROR_SUCCESS) Assign(name, buffer.data(), length);
        return Code(status);
    }

    std::uint32_t EnumValue(RegistryHandle key, std::uint32_t index,
                            std::u16string& name) override {
        std::array<wchar_t, kNameCapacity> buffer;
        DWORD length = kNameCapacity;
        const LSTATUS status = RegEnumValueW(KeyOf(key), index, buffer.data(), &length, nullptr,
                                             nullptr, nullptr, nullptr);
        if (status == ERROR_SUCCESS) Assign(name, buffer.data(), length);
        return Code(status);
    }

    std::uint32_t QueryValueSize(RegistryHandle key, std::u16string_view name, std::uint32_t& type,
                                 std::uint32_t& size) override {
        DWORD foundType = 0;
        DWORD foundSize = 0;
        const LSTATUS status = RegQueryValueExW(KeyOf(key), Wide(name).c_str(), nullptr, &foundType,
                                                nullptr, &foundSize);
        type = foundType;
        size = status == ERROR_SUCCESS ? foundSize : 0;
        return Code(status);
    }

    std::uint32_t QueryValue(RegistryHandle key, std::u16string_view name, std::uint32_t& type,
                             std::vector<std::uint8_t>& data) override {
        DWORD foundType = 0;
        auto size = static_cast<DWORD>(data.size());
        const LSTATUS status = RegQueryValueExW(KeyOf(key), Wide(name).c_str(), nullptr, &foundType,
                                                data.data(), &size);
        type = foundType;
        if (status == ERROR_SUCCESS) data.resize(size);
        return Code(status);
    }

    std::uint32_t SetValue(RegistryHandle key, std::u16string_view name, std::uint32_t type,
                           const void* data, std::uint32_t size) override {
        return Code(RegSetValueExW(KeyOf(key), Wide(name).c_str(), 0, type,
                                   static_cast<const BYTE*>(data), size));
    }
};

constinit Win32RegistryStore store;

}  // namespace

RegistryStore& PlatformRegistry() {
    return store;
}

}  // namespace kavrel
