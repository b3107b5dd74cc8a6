#include "automation/support/data_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace kavrel::tests {

namespace {

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \r");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \r") - first + 1);
}

}  // namespace

std::vector<DataRow> ReadTable(const std::string& file, char separator) {
    std::ifstream stream(KAVREL_TEST_DATA "/" + file);
    EXPECT_TRUE(stream.is_open()) << file;
    std::vector<DataRow> rows;
    int number = 0;
    for (std::string line; std::getline(stream, line);) {
        ++number;
        if (Trimmed(line).empty() || line.starts_with('#')) continue;
        DataRow& row =
            rows.emplace_back(DataRow{"tests/data/" + file + ':' + std::to_string(number), {}});
        std::istringstream fields(line);
        for (std::string field; std::getline(fields, field, separator);)
            row.fields.push_back(Trimmed(field));
    }
    return rows;
}

}  // namespace kavrel::tests
