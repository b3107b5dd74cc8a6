#include "frame/registry_editor.h"

#include "platform/win32/device.h"

namespace kavrel {
namespace {

// Scripts are ASCII.
std::wstring Widened(std::string_view text) {
    return {text.begin(), text.end()};
}

// Longer key names than the platform allows do not occur.
constexpr DWORD kKeyNameCapacity = 256;

LSTATUS FirstSubkey(HKEY key, wchar_t (&name)[kKeyNameCapacity]) {
    DWORD length = kKeyNameCapacity;
    return RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr);
}

std::uint32_t AbsenceIsNoError(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : static_cast<std::uint32_t>(status);
}

// Desktops delete only keys without subkeys. A subkey that is listed, but then not found, ends it:
// it would be listed for ever.
LSTATUS RemoveTreeBelow(HKEY parent, const wchar_t* path) {
    {
        const OpenKey key(parent, path);
        if (!key.IsOpen()) return key.status();
        wchar_t name[kKeyNameCapacity];
        while (FirstSubkey(key.get(), name) == ERROR_SUCCESS) {
            const LSTATUS status = RemoveTreeBelow(key.get(), name);
            if (status != ERROR_SUCCESS) return status;
        }
    }
    return RegDeleteKeyW(parent, path);
}

}  // namespace

OpenKey::OpenKey(HKEY parent, const wchar_t* path)
    : status_(RegOpenKeyExW(parent, path, 0, kRegistryAccess, &key_)) {
    if (status_ != ERROR_SUCCESS) key_ = nullptr;
}

OpenKey::~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
}

std::uint32_t ClassesRootEditor::CreateKey(std::string_view path) {
    HKEY key = nullptr;
    DWORD disposition = 0;
    const LSTATUS status = RegCreateKeyExW(HKEY_CLASSES_ROOT, Widened(path).c_str(), 0, nullptr, 0,
                                           kRegistryAccess, nullptr, &key, &disposition);
    if (status == ERROR_SUCCESS) RegCloseKey(key);
    return static_cast<std::uint32_t>(status);
}

std::uint32_t ClassesRootEditor::SetText(std::string_view path, std::string_view name,
                                         std::string_view text) {
    constexpr std::wstring_view kModule = L"%MODULE%";
    std::wstring value = Widened(text);
    const std::size_t at = value.find(kModule);
    if (at != std::wstring::npos) value.replace(at, kModule.size(), modulePath_);

    const OpenKey key(HKEY_CLASSES_ROOT, Widened(path).c_str());
    if (!key.IsOpen()) return static_cast<std::uint32_t>(key.status());
    const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return static_cast<std::uint32_t>(
        RegSetValueExW(key.get(), name.empty() ? nullptr : Widened(name).c_str(), 0, REG_SZ,
                       reinterpret_cast<const BYTE*>(value.c_str()), bytes));
}

std::uint32_t ClassesRootEditor::RemoveTree(std::string_view path) {
    return AbsenceIsNoError(RemoveTreeBelow(HKEY_CLASSES_ROOT, Widened(path).c_str()));
}

std::uint32_t ClassesRootEditor::RemoveIfChildless(std::string_view path) {
    const std::wstring widePath = Widened(path);
    {
        const OpenKey key(HKEY_CLASSES_ROOT, widePath.c_str());
        if (!key.IsOpen()) return AbsenceIsNoError(key.status());
        wchar_t name[kKeyNameCapacity];
        if (FirstSubkey(key.get(), name) == ERROR_SUCCESS) return ERROR_SUCCESS;
    }
    return AbsenceIsNoError(RegDeleteKeyW(HKEY_CLASSES_ROOT, widePath.c_str()));
}

}  // namespace kavrel
