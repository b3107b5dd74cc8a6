// What tests rely on: replaced imports, and counts of the system's resources.
#include <gtest/gtest.h>

#include "automation/support/import_hook.h"
#include "automation/support/library.h"
#include "automation/support/resources.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

DWORD lastTimeout = 0;

DWORD WINAPI TimeOutAtOnce(HANDLE, DWORD timeoutMs) {
    lastTimeout = timeoutMs;
    return WAIT_TIMEOUT;
}

DWORD WINAPI WaitFor(void* event) {
    return WaitForSingleObject(event, INFINITE);
}

using BenchTest = AutomationTest;

TEST_F(BenchTest, HookReplacesAnImportForAScope) {
    const ComPtr<IDispatch> parser = CreateParser();
    {
        const ImportHook hook("WaitForSingleObject", TimeOutAtOnce);
        ExpectSteps(parser.Get(),
                    {{L"=NoEvents", {true}, ""}, {L"GetQuality", {60000}, "DISPATCH null"}});
    }
    ExpectSteps(parser.Get(), {{L"GetQuality", {1}, "DISPATCH null"}});
    EXPECT_EQ(60000U, lastTimeout);
}

TEST_F(BenchTest, ResourcesAreCountedExactly) {
    (void)Resources::Now();
    const Resources before = Resources::Now();
    EXPECT_EQ(before, Resources::Now());

    BSTR text = SysAllocStringLen(nullptr, 1000);
    EXPECT_EQ(before.heapBlocks + 1, Resources::Now().heapBlocks);
    EXPECT_LE(before.heapBytes + 2000, Resources::Now().heapBytes);
    SysFreeString(text);

    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    EXPECT_EQ(before.handles + 1, Resources::Now().handles);
    // Not std::thread, which keeps handles of its own.
    HANDLE thread = CreateThread(nullptr, 0, WaitFor, event, 0, nullptr);
    EXPECT_EQ(before.threads + 1, Resources::Now().threads);
    EXPECT_EQ(before.handles + 2, Resources::Now().handles);
    SetEvent(event);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    CloseHandle(event);
    EXPECT_EQ(before.handles, Resources::Now().handles);
}

}  // namespace

}  // namespace kavrel::tests
