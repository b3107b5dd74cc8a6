// The interpreter of registration scripts.
//
// A script is text of nested keys under "HKCR":
//
//     HKCR
//     {
//         NoRemove CLSID
//         {
//             ForceRemove {guid} = s 'Position Class'
//             {
//                 InprocServer32 = s '%MODULE%' { val ThreadingModel = s 'Free' }
//             }
//         }
//     }
//
// Names and texts may stand in single quotes, in which a doubled quote stands for one. Registering
// creates keys and values; a key marked ForceRemove is first removed whole, so that nothing of an
// older version stays in it. Unregistering removes a key marked ForceRemove whole, keeps a key
// marked NoRemove, and removes an unmarked key once no subkey is left in it; values are left alone.
// Knows no registry itself: it works on any RegistryEditor.
#pragma once

#include <cstdint>
#include <string_view>

namespace kavrel {

// What a script does to a registry. Paths are relative to the classes root, with backslashes.
// Every operation returns 0 or the platform's error number.
class RegistryEditor {
  public:
    virtual std::uint32_t CreateKey(std::string_view path) = 0;

    // Sets a text value of an existing key; an empty name means the key's default value.
    virtual std::uint32_t SetText(std::string_view path, std::string_view name,
                                  std::string_view text) = 0;

    // Removes a key with everything below it. A key that is not there is no error.
    virtual std::uint32_t RemoveTree(std::string_view path) = 0;

    // Removes a key unless it still has subkeys. A key that is not there is no error.
    virtual std::uint32_t RemoveIfChildless(std::string_view path) = 0;

  protected:
    ~RegistryEditor() = default;
};

enum class ScriptMode : std::uint8_t { Register, Unregister };

// What a malformed script answers: the platform's number for invalid data.
inline constexpr std::uint32_t kScriptMalformed = 13;

// Runs a script up to its end or its first failure. Returns 0, kScriptMalformed, or the failing
// operation's number. Unregistering goes on after a failure and returns the first.
std::uint32_t RunRegistrationScript(std::string_view script, ScriptMode mode,
                                    RegistryEditor& editor);

}  // namespace kavrel
