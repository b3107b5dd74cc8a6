// Dialogues with an object under test: tables whose rows are an operation with its arguments and
// what comes of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/error_slot.h"
#include "table.h"

namespace kavrel {

// Code and text, or nothing.
inline std::string ErrorOf(const ErrorSlot& slot) {
    return slot.IsSet() ? std::to_string(slot.code()) + " " + std::string(slot.text()) : "";
}

// Tables are in UTF-8, which a path can convert.
inline std::u16string Wide(const std::string& text) {
    return std::filesystem::path(text).u16string();
}
inline std::string Utf8(std::u16string_view text) {
    return std::filesystem::path(text).string();
}

inline std::string Joined(const std::vector<std::string>& parts, std::string_view separator = " ") {
    std::string text;
    for (const std::string& part : parts)
        text.append(text.empty() ? "" : separator).append(part);
    return text;
}

// All digits that tell it from other numbers.
inline std::string TextOfNumber(double number) {
    std::array<char, 400> text;
    const auto end =
        std::to_chars(text.begin(), text.end(), number + 0.0, std::chars_format::fixed);
    return {text.data(), end.ptr};
}

// The enumerator that stands at the name's place in a list of all names.
template <typename Enum>
Enum Named(std::initializer_list<std::string_view> names, const std::string& name) {
    const auto* const found = std::find(names.begin(), names.end(), name);
    EXPECT_NE(found, names.end()) << name;
    return static_cast<Enum>(found - names.begin());
}

template <typename Object>
class Dialogue {
  public:
    // The object is asked for anew at each operation.
    explicit Dialogue(std::function<Object&()> object) : object_(std::move(object)) {}

    // A member of the object. What comes of it is the result, and the error behind "!".
    template <typename Result, typename... Arguments>
    void Add(const std::string& name, Result (Object::*member)(Arguments...)) {
        AddOperation(name, [this, member](Arguments... arguments) {
            return (object_().*member)(arguments...);
        });
    }
    // The same for what is not just a member.
    template <typename Call>
    void AddOperation(const std::string& name, Call call) {
        operations_[name] = {Of(std::function(call)),
                             [this] { return ErrorOf(object_().error()); }};
    }
    // One that is no operation and has no error.
    template <typename Result>
    void Add(const std::string& name, Result (Object::*member)() const) {
        Add(name, [this, member] { return (object_().*member)(); });
    }
    // Anything else that a row can ask for.
    template <typename Call>
    void Add(const std::string& name, Call call) {
        operations_[name] = {Of(std::function(call)), nullptr};
    }

    // The result of a row, without the error.
    std::string Call(const std::string& row) const { return OutcomeOf(row, false); }

    void Hold(const TableGroup& group) const {
        for (const TableRow& row : group.rows) {
            SCOPED_TRACE(row.where + ": " + row[0]);
            ASSERT_EQ(OutcomeOf(row[0], true), row[1]);
            if (testing::Test::HasFailure()) return;
        }
    }

  private:
    struct Operation {
        std::function<std::string(std::istringstream&)> call;
        std::function<std::string()> error;  // null where there is none
    };

    // As what an argument is taken from a row: a number, or a word, of which '' is an empty one.
    template <typename T>
    using Taken = std::conditional_t<
        std::is_arithmetic_v<std::decay_t<T>>, std::decay_t<T>,
        std::conditional_t<std::is_same_v<T, std::u16string_view>, std::u16string, std::string>>;

    template <typename T>
    static T Take(std::istringstream& words) {
        std::string word;
        words >> word;
        if (word == "''") word.clear();
        if constexpr (std::is_arithmetic_v<T>) return static_cast<T>(std::stod(word));
        if constexpr (std::is_same_v<T, std::u16string>) return Wide(word);
        if constexpr (std::is_same_v<T, std::string>) return word;
    }

    template <typename Result, typename... Arguments>
    static auto Of(std::function<Result(Arguments...)> call) {
        return [call](std::istringstream& words) -> std::string {
            // Braces, as what stands in them is evaluated in its order.
            std::tuple<Taken<Arguments>...> arguments{Take<Taken<Arguments>>(words)...};
            EXPECT_TRUE((words >> std::ws).eof()) << "more words than arguments";
            if constexpr (std::is_void_v<Result>) {
                std::apply(call, arguments);
                return "";
            } else if constexpr (std::is_floating_point_v<Result>) {
                return TextOfNumber(std::apply(call, arguments));
            } else if constexpr (std::is_arithmetic_v<Result>) {
                return std::to_string(std::apply(call, arguments));
            } else if constexpr (std::is_constructible_v<std::string, Result>) {
                return std::string(std::apply(call, arguments));
            } else {
                return std::apply(call, arguments) ? "given" : "none";
            }
        };
    }

    std::string OutcomeOf(const std::string& row, bool withError) const {
        std::istringstream words(row);
        std::string name;
        words >> name;
        const auto operation = operations_.find(name);
        if (operation == operations_.end()) return "(no such operation)";
        const std::string result = operation->second.call(words);
        if (!withError || !operation->second.error) return result;
        const std::string error = operation->second.error();
        if (error.empty()) return result;
        return result + (result.empty() ? "! " : " ! ") + error;
    }

    std::function<Object&()> object_;
    std::map<std::string, Operation> operations_;
};

}  // namespace kavrel
