// FailingImport: makes calls fail that the DLL makes of a function of the platform.
#pragma once

#include <windows.h>

#include "automation/support/import_hook.h"

namespace kavrel::tests {

enum class Failing { Once, FromThenOn };

// Counts down to the call that fails.
class Countdown {
  public:
    Countdown(LONG nth, Failing failing) : left_(nth), failing_(failing) {}

    // For each call: whether it fails.
    bool Strikes() {
        const LONG left = InterlockedDecrement(&left_);
        return left == 0 || (left < 0 && failing_ == Failing::FromThenOn);
    }
    bool HasStruck() const { return left_ <= 0; }

  private:
    LONG left_;
    Failing failing_;
};

// For a scope. The nth call from now on (1 is the next) returns `failure`, with that last error,
// and does nothing. One at a time for each type of function.
template <typename Function>
class FailingImport;

template <typename Result, typename... Arguments>
class FailingImport<Result WINAPI(Arguments...)> {
  public:
    FailingImport(const char* name, LONG nth, Result failure, Failing failing = Failing::Once,
                  DWORD lastError = ERROR_NOT_ENOUGH_MEMORY)
        : countdown_(nth, failing),
          failure_(failure),
          lastError_(lastError),
          hook_(name, &Replacement) {
        current_ = this;
    }
    FailingImport(const FailingImport&) = delete;
    FailingImport& operator=(const FailingImport&) = delete;

    bool HasFailed() const { return countdown_.HasStruck(); }

  private:
    using Function = Result WINAPI(Arguments...);

    static Result WINAPI Replacement(Arguments... arguments) {
        if (!current_->countdown_.Strikes()) return current_->hook_.original()(arguments...);
        SetLastError(current_->lastError_);
        return current_->failure_;
    }

    static inline FailingImport* current_ = nullptr;

    Countdown countdown_;
    Result failure_;
    DWORD lastError_;
    ImportHook<Function> hook_;
};

}  // namespace kavrel::tests
