// A registry in memory, with the rules of the platform's, that counts operations and can be made
// to fail.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "frame/registration_script.h"

namespace kavrel {

class MemoryRegistry final : public RegistryEditor {
  public:
    static constexpr std::uint32_t kFileNotFound = 2;

    // A key's values by name; the default value's name is empty.
    using Values = std::map<std::string, std::string>;
    using Keys = std::map<std::string, Values>;

    std::uint32_t CreateKey(std::string_view path) override {
        if (const std::uint32_t error = Begin("create", path)) return error;
        for (std::size_t end = path.find('\\'); end != path.npos; end = path.find('\\', end + 1)) {
            keys[std::string(path.substr(0, end))];
        }
        keys[std::string(path)];
        return 0;
    }

    std::uint32_t SetText(std::string_view path, std::string_view name,
                          std::string_view text) override {
        if (const std::uint32_t error = Begin("set", path)) return error;
        if (path.empty()) keys[""];  // the root, which is always there
        const auto key = keys.find(std::string(path));
        if (key == keys.end()) return kFileNotFound;
        key->second[std::string(name)] = text;
        return 0;
    }

    std::uint32_t RemoveTree(std::string_view path) override {
        if (const std::uint32_t error = Begin("remove tree", path)) return error;
        std::erase_if(keys, [path](const auto& key) {
            return key.first == path || IsBelow(key.first, path);
        });
        return 0;
    }

    std::uint32_t RemoveIfChildless(std::string_view path) override {
        if (const std::uint32_t error = Begin("remove", path)) return error;
        for (const auto& key : keys) {
            if (IsBelow(key.first, path)) return 0;
        }
        keys.erase(std::string(path));
        return 0;
    }

    // The text of a value, or "(none)".
    std::string TextOf(const std::string& path, const std::string& name = {}) const {
        const auto key = keys.find(path);
        if (key == keys.end()) return "(none)";
        const auto value = key->second.find(name);
        return value != key->second.end() ? value->second : "(none)";
    }

    Keys keys;
    std::vector<std::string> operations;

    // The operation with this index, from 0, fails with this error.
    std::size_t failingOperation = static_cast<std::size_t>(-1);
    std::uint32_t failure = 5;

  private:
    static bool IsBelow(std::string_view path, std::string_view parent) {
        return path.size() > parent.size() && path.starts_with(parent) &&
               path[parent.size()] == '\\';
    }

    std::uint32_t Begin(std::string_view operation, std::string_view path) {
        operations.push_back(std::string(operation) + " " + std::string(path));
        return operations.size() - 1 == failingOperation ? failure : 0;
    }
};

}  // namespace kavrel
