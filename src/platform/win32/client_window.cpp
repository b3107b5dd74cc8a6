#include "platform/win32/client_window.h"

#include <windows.h>

#include <cstdlib>
#include <new>
#include <utility>

#include "platform/window_class_name.h"

namespace kavrel {
namespace {

constexpr UINT kHandOverMessage = WM_USER + 101;
constexpr int kWindowSize = 100;

class FormSyncWindow final : public ClientWindow {
  public:
    FormSyncWindow(TakeHandOver take, void* context) : take_(take), context_(context) {}
    ~FormSyncWindow() override;

    // False, with the platform's error, when there can be no window.
    bool Create(const wchar_t* windowClass, std::uint32_t& error);

    bool Post(std::uint32_t key) override {
        return PostMessageW(handle_, kHandOverMessage, 0, static_cast<LPARAM>(key)) != 0;
    }

    // What a message to a window is about: nothing when the window is not in the list any more.
    static HandOver Take(HWND handle, std::uint32_t key);
    static void ForgetAll();

  private:
    const TakeHandOver take_;
    void* const context_;
    HWND handle_ = nullptr;
    FormSyncWindow* next_ = nullptr;
};

// Every live window of the process.
constinit FormSyncWindow* windows KAVREL_GUARDED_BY(libraryLock) = nullptr;

FormSyncWindow::~FormSyncWindow() {
    {
        const LibraryLockScope lock;
        FormSyncWindow** link = &windows;
        while (*link != nullptr && *link != this)
            link = &(*link)->next_;
        if (*link == this) *link = next_;
    }
    // Another thread than the window's own cannot destroy it, but may ask for it.
    if (handle_ != nullptr && DestroyWindow(handle_) == 0) PostMessageW(handle_, WM_CLOSE, 0, 0);
}

bool FormSyncWindow::Create(const wchar_t* windowClass, std::uint32_t& error) {
    handle_ = CreateWindowExW(0, windowClass, L"kvFormSync", WS_POPUP, 0, 0, kWindowSize,
                              kWindowSize, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (handle_ == nullptr) {
        error = GetLastError();
        return false;
    }
    const LibraryLockScope lock;
    next_ = std::exchange(windows, this);
    return true;
}

HandOver FormSyncWindow::Take(HWND handle, std::uint32_t key) {
    const LibraryLockScope lock;
    for (FormSyncWindow* window = windows; window != nullptr; window = window->next_) {
        if (window->handle_ == handle) return window->take_(window->context_, key);
    }
    return {};
}

void FormSyncWindow::ForgetAll() {
    const LibraryLockScope lock;
    windows = nullptr;
}

LRESULT CALLBACK WindowProcedure(HWND handle, UINT message, WPARAM first, LPARAM second) {
    if (message != kHandOverMessage) return DefWindowProcW(handle, message, first, second);
    HandOver handOver = FormSyncWindow::Take(handle, static_cast<std::uint32_t>(second));
    if (handOver.run != nullptr) handOver.run(handOver);
    return 0;
}

WindowClassName FreshClassName() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    FILETIME time{};
    SystemTimeToFileTime(&now, &time);
    WindowClassSeed seed;
    seed.systemTime = (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    seed.tickCountMs = GetTickCount();
    seed.firstRandom = static_cast<std::uint32_t>(std::rand());
    seed.secondRandom = static_cast<std::uint32_t>(std::rand());
    return MakeWindowClassName(seed);
}

// The class of all windows of the process: registered for the first of them and never given back.
constinit WindowClassName className KAVREL_GUARDED_BY(libraryLock){};
constinit bool isClassRegistered KAVREL_GUARDED_BY(libraryLock) = false;

// Null, with the platform's error, when the class cannot be registered. Under the lock, since two
// threads may make the first two windows; it waits for nothing.
const wchar_t* RegisteredClass(std::uint32_t& error) {
    const LibraryLockScope lock;
    const auto* const name = reinterpret_cast<const wchar_t*>(className.data());
    if (isClassRegistered) return name;
    className = FreshClassName();
    WNDCLASSW description{};
    description.lpfnWndProc = &WindowProcedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = name;
    isClassRegistered = RegisterClassW(&description) != 0;
    if (isClassRegistered) return name;
    error = GetLastError();
    return nullptr;
}

}  // namespace

std::unique_ptr<ClientWindow> MakeFormSyncWindow(TakeHandOver take, void* context,
                                                 ErrorSlot& error) {
    std::uint32_t code = 0;
    const wchar_t* const windowClass = RegisteredClass(code);
    if (windowClass == nullptr) {
        error.Set(code, Message::WindowClassFailed);
        return nullptr;
    }
    std::unique_ptr<FormSyncWindow> window(new (std::nothrow) FormSyncWindow(take, context));
    if (window == nullptr) code = ERROR_NOT_ENOUGH_MEMORY;
    if (window == nullptr || !window->Create(windowClass, code)) {
        error.Set(code, Message::WindowFailed);
        return nullptr;
    }
    return window;
}

void ForgetFormSyncWindows() {
    FormSyncWindow::ForgetAll();
}

}  // namespace kavrel
