// RegistrationTest: registers the library before and after, with nobody counted as its user.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "automation/support/library.h"

namespace kavrel::tests {

// The count of the module's users is kept under the name it would have in the system's directory:
// that of the device's core library, where there is one.
inline std::wstring UsageName() {
    wchar_t path[MAX_PATH] = {};
    const HMODULE core = GetModuleHandleW(L"coredll.dll");
    if (core == nullptr) {
        GetSystemDirectoryW(path, MAX_PATH);
        return std::wstring(path) + L"\\KavrelCE.dll";
    }
    GetModuleFileNameW(core, path, MAX_PATH);
    const std::wstring text(path);
    return text.substr(0, text.rfind(L'\\') + 1) + L"KavrelCE.dll";
}

class RegistrationTest : public AutomationTest {
  protected:
    static constexpr wchar_t kUsageKey[] = L"Software\\Apps\\Shared";

    void SetUp() override {
        AutomationTest::SetUp();
        ClearUsage();
        ASSERT_EQ(S_OK, RegisterServer());
    }
    void TearDown() override {
        ClearUsage();
        EXPECT_EQ(S_OK, RegisterServer());
        AutomationTest::TearDown();
    }

    static void SetUsage(DWORD type, const void* data, DWORD size,
                         const std::wstring& name = UsageName()) {
        ASSERT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_CLASSES_ROOT, kUsageKey, name.c_str(), type, data, size));
    }
    static void SetUsageCount(DWORD count) { SetUsage(REG_DWORD, &count, sizeof count); }

  private:
    static void ClearUsage() { RegDeleteTreeW(HKEY_CLASSES_ROOT, L"Software\\Apps"); }
};

}  // namespace kavrel::tests
