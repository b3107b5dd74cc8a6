// The source of errors. Codes, texts and interfaces are in tests/data/automation/errors.txt and
// member_test.cpp.
#include <gtest/gtest.h>
#include <ole2.h>

#include <string>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using ErrorTest = AutomationTest;

void RegisterDescription(const std::wstring& text) {
    wchar_t path[45] = L"CLSID\\";
    StringFromGUID2(CLSID_NmeaParser, path + 6, 39);
    EXPECT_EQ(ERROR_SUCCESS,
              RegSetKeyValueW(HKEY_CLASSES_ROOT, path, nullptr, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
}

// It is read into 120 characters, its end included.
TEST_F(ErrorTest, SourceIsWhatIsRegistered) {
    const ComPtr<IDispatch> parser = CreateParser();
    for (const size_t length : {1, 118, 119, 120, 5000}) {
        const std::string text(length, 'x');
        RegisterDescription(std::wstring(length, L'x'));
        EXPECT_EQ("80042713 Unknown datum!" + (length < 120 ? " (" + text + ")" : ""),
                  Outcome(Put(parser.Get(), L"GpsDatum", 0)));
    }
    RegisterDescription(L"NmeaParser Class");
}

}  // namespace

}  // namespace kavrel::tests
