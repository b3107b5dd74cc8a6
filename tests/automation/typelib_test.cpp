// The interface that hosts rely on: the type library in the DLL.
//
// KavrelCE.typelib.txt beside this file holds all of it as text, so that no change of the
// interface goes unseen. After a deliberate change, copy the file that the failing test names over
// it and read the difference.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "automation/typelib_dump.h"

namespace kavrel::tests {

namespace {

constexpr char kGoldenFile[] = KAVREL_TEST_DATA "/../automation/KavrelCE.typelib.txt";
constexpr char kActualFile[] = KAVREL_BUILD "/KavrelCE.typelib.actual.txt";

TEST(TypeLibraryTest, EqualsTheRecordedInterface) {
    std::ifstream file(kGoldenFile);
    ASSERT_TRUE(file) << kGoldenFile;
    std::stringstream golden;
    golden << file.rdbuf();

    std::string actual;
    for (const TypeDescription& type : DescribeTypeLibrary())
        actual += (actual.empty() ? "" : "\n") + type.text;
    if (actual != golden.str()) std::ofstream(kActualFile, std::ios::binary) << actual;
    EXPECT_EQ(golden.str(), actual) << "written to " << kActualFile;
}

}  // namespace

}  // namespace kavrel::tests
