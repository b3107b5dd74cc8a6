// A registry editor that writes down what it is asked for, and can be made to fail.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/registration_script.h"

namespace kavrel {

class RecordingEditor final : public RegistryEditor {
  public:
    static constexpr std::uint32_t kFailure = 5;

    // The operation with this index, from 0, fails.
    explicit RecordingEditor(std::size_t failingOperation = SIZE_MAX)
        : failingOperation_(failingOperation) {}

    std::uint32_t CreateKey(std::string_view path) override { return Note("create", path); }
    std::uint32_t SetText(std::string_view path, std::string_view name,
                          std::string_view text) override {
        return Note("set", std::string(path) + ":" + std::string(name) + "=" + std::string(text));
    }
    std::uint32_t RemoveTree(std::string_view path) override { return Note("remove tree", path); }
    std::uint32_t RemoveIfChildless(std::string_view path) override { return Note("remove", path); }

    std::vector<std::string> operations;

  private:
    std::uint32_t Note(const std::string& operation, std::string_view what) {
        operations.push_back(operation + " " + std::string(what));
        return operations.size() - 1 == failingOperation_ ? kFailure : 0;
    }

    std::size_t failingOperation_;
};

}  // namespace kavrel
