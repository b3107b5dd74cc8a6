// Text tables of tests/data: a row a line, its columns divided by '|'. Blank lines and comments
// (#) are skipped; "[Name]" begins a group of rows.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace kavrel {

struct TableRow {
    std::string where;  // file and line, for messages
    std::vector<std::string> columns;

    // Without the blanks around it; empty where the row has no such column.
    std::string operator[](std::size_t column) const {
        return column < columns.size() ? columns[column] : "";
    }
};

struct TableGroup {
    std::string name;
    std::vector<TableRow> rows;

    friend void PrintTo(const TableGroup& group, std::ostream* out) { *out << group.name; }
};

// The groups of tests/data/<name>; the rows of a table without groups are in one without a name.
inline std::vector<TableGroup> ReadGroups(const std::string& name) {
    std::ifstream file(std::string(KAVREL_TEST_DATA) + "/" + name);
    std::vector<TableGroup> groups;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line[0] == '#') continue;
        const bool isHead = line[0] == '[';
        if (isHead || groups.empty()) groups.emplace_back();
        if (isHead) {
            groups.back().name = line.substr(1, line.find(']') - 1);
            continue;
        }
        TableRow& row = groups.back().rows.emplace_back();
        row.where = name + ":" + std::to_string(number);
        std::istringstream columns(line);
        for (std::string column; std::getline(columns, column, '|');) {
            column.erase(0, column.find_first_not_of(' '));
            column.erase(column.find_last_not_of(' ') + 1);
            row.columns.push_back(column);
        }
    }
    EXPECT_FALSE(groups.empty()) << name << " cannot be read, or is empty";
    return groups;
}

inline std::vector<TableRow> ReadRows(const std::string& name) {
    return ReadGroups(name).at(0).rows;
}

// For INSTANTIATE_TEST_SUITE_P: a test a group, by its name.
inline std::string NameOfGroup(const testing::TestParamInfo<TableGroup>& info) {
    return info.param.name;
}

}  // namespace kavrel
