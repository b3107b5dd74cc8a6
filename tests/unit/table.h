// Tables of inputs and expectations: the files in tests/data.
//
// A line is a row, "#" starts a comment line, and the first other line names the columns. Fields
// are separated by "," or, where the head line has one, by "|". Blanks around a field do not count;
// quotation marks around it keep them. "\r", "\n", "\t", "\\" and "\xHH" stand for one character.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace kavrel {

class Row {
  public:
    Row(std::string_view line, char separator) {
        for (;;) {
            const std::size_t end = std::min(line.find(separator), line.size());
            fields_.push_back(Unescaped(Trimmed(line.substr(0, end))));
            if (end == line.size()) return;
            line.remove_prefix(end + 1);
        }
    }

    // Empty, too, where the row ends before the column.
    std::string Text(std::size_t column) const {
        return column < fields_.size() ? fields_[column] : std::string();
    }
    double Number(std::size_t column) const {
        const std::string text = Text(column);
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        EXPECT_TRUE(!text.empty() && *end == '\0') << "no number: " << text;
        return value;
    }
    int Integer(std::size_t column) const { return static_cast<int>(Number(column)); }
    bool Flag(std::size_t column) const { return Integer(column) != 0; }

    // All fields from a column on; none where the row ends before it.
    std::vector<std::string> From(std::size_t column) const {
        return {fields_.begin() + static_cast<std::ptrdiff_t>(std::min(column, fields_.size())),
                fields_.end()};
    }

  private:
    static std::string_view Trimmed(std::string_view field) {
        const std::size_t begin = std::min(field.find_first_not_of(' '), field.size());
        field = field.substr(begin, field.find_last_not_of(' ') + 1 - begin);
        const bool isQuoted = field.size() > 1 && field.starts_with('"') && field.ends_with('"');
        return isQuoted ? field.substr(1, field.size() - 2) : field;
    }

    static std::string Unescaped(std::string_view field) {
        constexpr std::string_view kNames = "rnt\\";
        std::string text;
        for (std::size_t i = 0; i < field.size(); ++i) {
            if (field[i] != '\\') {
                text += field[i];
                continue;
            }
            const std::size_t name = kNames.find(field.at(++i));
            if (name != kNames.npos) {
                text += "\r\n\t\\"[name];
            } else {
                text +=
                    static_cast<char>(std::stoi(std::string(field.substr(i + 1, 2)), nullptr, 16));
                i += 2;
            }
        }
        return text;
    }

    std::vector<std::string> fields_;
};

// Calls `check` with every row of tests/data/<name>; what fails there names the file and its line.
template <typename Check>
void ForEachRow(const std::string& name, Check check) {
    std::string path = KAVREL_TEST_DATA "/";
    path += name;
    std::ifstream file(path);
    int number = 0;
    int rows = -1;  // the head line is none
    char separator = ',';
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.empty() || line.starts_with('#')) continue;
        if (++rows == 0) {
            if (line.find('|') != line.npos) separator = '|';
            continue;
        }
        const testing::ScopedTrace trace(path.c_str(), number, line);
        check(Row(line, separator));
    }
    EXPECT_GT(rows, 0) << path;
}

}  // namespace kavrel
