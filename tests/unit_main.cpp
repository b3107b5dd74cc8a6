// The main program of every GoogleTest program of the build machine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "base/record.h"

namespace {

// A test that leaves records behind has failed, whatever else it says, unless it says that too: by
// its property "records kept".
class RecordCounter final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        liveBefore_ = kavrel::Record::LiveCount();
    }
    void OnTestEnd(const testing::TestInfo& test) override {
        const std::int32_t expected = liveBefore_ + RecordsKept(*test.result());
        // A thread may have told its end and still be dropping what it held.
        for (int i = 0; i < 10000 && kavrel::Record::LiveCount() != expected; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        EXPECT_EQ(expected, kavrel::Record::LiveCount()) << "records are left over";
    }

    static int RecordsKept(const testing::TestResult& result) {
        for (int i = 0; i < result.test_property_count(); ++i) {
            const testing::TestProperty& property = result.GetTestProperty(i);
            if (std::string_view(property.key()) == "records kept")
                return std::atoi(property.value());
        }
        return 0;
    }

    std::int32_t liveBefore_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new RecordCounter);
    return RUN_ALL_TESTS();
}
