// Tables of facts under tests/data, which change without recompiling.
#pragma once

#include <string>
#include <vector>

namespace kavrel::tests {

struct DataRow {
    std::string place;  // file and line, for messages
    std::vector<std::string> fields;
};

// The rows of a file ("geodesy/grids.csv"), cut at the separator and without blanks around the
// fields. Empty lines and lines that begin with '#' are comments. A file that cannot be read fails
// the test and has no rows.
std::vector<DataRow> ReadTable(const std::string& file, char separator);

}  // namespace kavrel::tests
