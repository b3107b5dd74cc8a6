// ImportHook: has the DLL under test call another function in place of one that it imports.
#pragma once

namespace kavrel::tests {

// For a scope. Hooks of one function must end in the reverse order of their making. The
// replacement runs on whatever thread the DLL calls from.
//     const ImportHook hook("GetTickCount", +[]() WINAPI -> DWORD { ... });
class ImportHookBase {
  public:
    ImportHookBase(const ImportHookBase&) = delete;
    ImportHookBase& operator=(const ImportHookBase&) = delete;

  protected:
    // Not imported: fails the test.
    ImportHookBase(const char* name, void* replacement);
    ~ImportHookBase();
    void* original() const { return original_; }

  private:
    void** place_;
    void* original_ = nullptr;
};

template <typename Function>
class ImportHook final : ImportHookBase {
  public:
    ImportHook(const char* name, Function* replacement)
        : ImportHookBase(name, reinterpret_cast<void*>(replacement)) {}

    // What the DLL would call without the hook.
    Function* original() const { return reinterpret_cast<Function*>(ImportHookBase::original()); }
};

}  // namespace kavrel::tests
