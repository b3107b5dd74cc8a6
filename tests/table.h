// Tables of inputs and expectations: the files in tests/data, which change without recompiling.
//
// A line is a row of fields, and blanks around a field do not count. Blank lines and lines that
// begin with "#" are comments. What fails names the file and the line.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kavrel {

struct TableRow {
    std::string where;  // file and line
    std::vector<std::string> fields;

    // Empty where the row ends before the column.
    std::string operator[](std::size_t column) const {
        return column < fields.size() ? fields[column] : std::string();
    }
};

// The rows of tests/data/<name>, cut at the separator, by default at "|" where the first row has
// one, else at ",". A file that cannot be read, or is empty, fails the test.
inline std::vector<TableRow> ReadTable(const std::string& name, char separator = '\0') {
    constexpr const char* kBlanks = " \t\r";
    std::ifstream file(KAVREL_TEST_DATA "/" + name);
    std::vector<TableRow> rows;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (line.find_first_not_of(kBlanks) == line.npos || line[0] == '#') continue;
        if (separator == '\0') separator = line.find('|') != line.npos ? '|' : ',';
        TableRow& row = rows.emplace_back();
        row.where = "tests/data/" + name + ":" + std::to_string(number);
        for (std::size_t begin = 0, end = 0; end != line.npos; begin = end + 1) {
            end = line.find(separator, begin);
            std::string field = line.substr(begin, end == line.npos ? end : end - begin);
            field.erase(0, field.find_first_not_of(kBlanks));
            field.erase(field.find_last_not_of(kBlanks) + 1);
            row.fields.push_back(std::move(field));
        }
    }
    EXPECT_FALSE(rows.empty()) << name << " cannot be read, or is empty";
    return rows;
}

// Rows under a line "[Name]".
struct TableGroup {
    std::string name;
    std::vector<TableRow> rows;

    friend void PrintTo(const TableGroup& group, std::ostream* out) { *out << group.name; }
};

// The groups of a table whose fields are separated by "|".
inline std::vector<TableGroup> ReadGroups(const std::string& name) {
    std::vector<TableGroup> groups;
    for (TableRow& row : ReadTable(name, '|')) {
        if (const std::string head = row[0]; head.starts_with('[')) {
            groups.push_back({head.substr(1, head.find(']') - 1), {}});
        } else {
            groups.at(groups.size() - 1).rows.push_back(std::move(row));
        }
    }
    return groups;
}

// For INSTANTIATE_TEST_SUITE_P: a test a group, by its name.
inline std::string NameOfGroup(const testing::TestParamInfo<TableGroup>& info) {
    return info.param.name;
}

// A row of facts. Quotation marks around a field keep its blanks, and "\r", "\n", "\t", "\\" and
// "\xHH" stand for one character.
class Row {
  public:
    explicit Row(const TableRow& row) {
        for (const std::string& field : row.fields)
            fields_.push_back(Unescaped(Unquoted(field)));
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
    static std::string_view Unquoted(std::string_view field) {
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

// Calls `check` with every row of a table of facts, whose first row names the columns.
template <typename Check>
void ForEachRow(const std::string& name, Check check) {
    const std::vector<TableRow> rows = ReadTable(name);
    for (std::size_t i = 1; i < rows.size(); ++i) {
        SCOPED_TRACE(rows[i].where + ": " + rows[i][0]);
        check(Row(rows[i]));
    }
}

}  // namespace kavrel
