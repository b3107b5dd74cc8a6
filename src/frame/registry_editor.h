// The RegistryEditor of the platform's registry, and the registry reads of the frame.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "frame/registration_script.h"

namespace kavrel {

// Owns an open registry key.
class OpenKey {
  public:
    // Check with IsOpen: a key that is not there or not allowed leaves it closed; status tells why.
    OpenKey(HKEY parent, const wchar_t* path);
    ~OpenKey();
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    bool IsOpen() const { return key_ != nullptr; }
    LSTATUS status() const { return status_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    LSTATUS status_;
};

// Works below HKEY_CLASSES_ROOT; in texts, "%MODULE%" stands for the module's path.
class ClassesRootEditor final : public RegistryEditor {
  public:
    explicit ClassesRootEditor(const wchar_t* modulePath) : modulePath_(modulePath) {}

    std::uint32_t CreateKey(std::string_view path) override;
    std::uint32_t SetText(std::string_view path, std::string_view name,
                          std::string_view text) override;
    std::uint32_t RemoveTree(std::string_view path) override;
    std::uint32_t RemoveIfChildless(std::string_view path) override;

  private:
    std::wstring_view modulePath_;
};

}  // namespace kavrel
