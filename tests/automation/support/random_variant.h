// RandomVariant: an argument as no well-meaning host would give it.
#pragma once

#include <oaidl.h>
#include <wrl/client.h>

#include <iterator>
#include <random>
#include <vector>

#include "automation/support/var.h"

namespace kavrel::tests {

class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}

    // Below `limit`, which is at least 1.
    unsigned Below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
    bool OneIn(unsigned count) { return Below(count) == 0; }
    unsigned long long Bits() { return engine_(); }
    const auto& Of(const auto& choices) {
        return choices[Below(static_cast<unsigned>(std::size(choices)))];
    }

  private:
    std::mt19937_64 engine_;
};

using Objects = std::vector<Microsoft::WRL::ComPtr<IDispatch>>;

// Everything that it refers to is its own and valid, as COM asks for, though references may be
// null.
class RandomVariant {
  public:
    // Objects are taken from those given.
    RandomVariant(Random& random, const Objects& objects);
    RandomVariant(const RandomVariant&) = delete;
    RandomVariant& operator=(const RandomVariant&) = delete;

    VARIANT* get() { return outer_.get(); }

    // For members that must not be given just anything.
    void Replace(const Var& value) { outer_ = value; }

  private:
    void Fill(VARIANT& variant);
    void FillArray(VARIANT& variant);
    BSTR MakeText();

    Random& random_;
    const Objects& objects_;
    Var outer_;
    Var middle_;  // what outer_ refers to, when it is a reference
    Var inner_;   // what middle_ refers to, when it is one, too
};

}  // namespace kavrel::tests
