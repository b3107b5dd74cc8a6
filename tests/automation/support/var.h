// Var: a VARIANT that frees what it holds.
#pragma once

#include <oaidl.h>

#include <ostream>
#include <string>
#include <vector>

namespace kavrel::tests {

class Var {
  public:
    Var() { VariantInit(&value_); }
    Var(int value);             // NOLINT(google-explicit-constructor): arguments are written plain
    Var(double value);          // NOLINT(google-explicit-constructor)
    Var(bool value);            // NOLINT(google-explicit-constructor)
    Var(const wchar_t* value);  // NOLINT(google-explicit-constructor)
    Var(const std::wstring& value);  // NOLINT(google-explicit-constructor): embedded zeros are kept
    Var(IDispatch* object);  // NOLINT(google-explicit-constructor): takes a further reference
    Var(const Var& other);
    Var(Var&& other) noexcept;
    Var& operator=(Var other) noexcept;
    ~Var() { VariantClear(&value_); }

    // Of the given type with all other bytes 0.
    static Var Of(VARTYPE type);

    // An omitted argument.
    static Var Missing();

    // A reference to a value of that type, as languages with types pass their variables, or to
    // another variant, as VBScript does. What it refers to must live on.
    static Var Reference(int type, void* to);
    static Var To(Var& other) { return Reference(VT_VARIANT, other.get()); }

    VARTYPE type() const { return V_VT(&value_); }
    VARIANT* get() { return &value_; }
    const VARIANT* get() const { return &value_; }

    // The characters of a string, the number of any numeric type, the object of a dispatch variant.
    // Of a variant of another type: empty, 0, null; compare with Describe to see what it is.
    std::wstring text() const;
    int number() const;
    IDispatch* object() const { return type() == VT_DISPATCH ? V_DISPATCH(&value_) : nullptr; }

  private:
    VARIANT value_;
};

using Vars = std::vector<Var>;

// Type and value as text ("I4 3", "BSTR null", "DISPATCH object"), for comparing and printing.
std::string Describe(const VARIANT& value);
inline std::string Describe(const Var& value) {
    return Describe(*value.get());
}

inline void PrintTo(const Var& value, std::ostream* out) {
    *out << Describe(value);
}

// Wide text as UTF-8, for printing.
std::string Narrow(const std::wstring& text);

}  // namespace kavrel::tests
