// Reports whose message is a string of the module: here, of this program.
#include "frame/error_report.h"

#include <gtest/gtest.h>
#include <ole2.h>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "frame/module.h"

namespace kavrel::tests {
namespace {

TEST(ErrorReportTest, TakesMessagesFromTheModule) {
    SetModuleInstance(GetModuleHandleW(nullptr));
    const struct {
        UINT number;
        HRESULT given;
        HRESULT failure;
        const wchar_t* description;
    } cases[] = {
        {300, S_OK, static_cast<HRESULT>(0x8004012C), L"A text of the module."},
        {300, E_FAIL, E_FAIL, L"A text of the module."},
        {301, S_OK, static_cast<HRESULT>(0x8004012D), L"Unknown Error"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.failure, ReportError(CLSID_Position, c.number, IID_IPosition, c.given));
        const std::optional<ErrorReport> report = TakeErrorObject();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(c.description, report->description);
        EXPECT_EQ(L"Position Class", report->source);
        EXPECT_TRUE(IsEqualIID(IID_IPosition, report->interfaceId));
    }
}

}  // namespace
}  // namespace kavrel::tests
