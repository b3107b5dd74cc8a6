// RandomVariant: an argument as no well-meaning host would give it.
#pragma once

#include <oaidl.h>
#include <wrl/client.h>

#include <random>
#include <span>
#include <string>
#include <vector>

namespace kavrel::tests {

class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}

    // Below `limit`, which is at least 1.
    unsigned Below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
    bool OneIn(unsigned count) { return Below(count) == 0; }
    unsigned long long Bits() { return engine_(); }

    template <typename T, size_t Count>
    const T& Of(const T (&choices)[Count]) {
        return choices[Below(static_cast<unsigned>(Count))];
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
    ~RandomVariant();
    RandomVariant(const RandomVariant&) = delete;
    RandomVariant& operator=(const RandomVariant&) = delete;

    VARIANT* get() { return &outer_; }

    // For members that must not be given just anything: a copy of a variant without references.
    void Replace(const VARIANT& value);

  private:
    void Fill(VARIANT& variant);
    void FillArray(VARIANT& variant);
    BSTR MakeText();

    Random& random_;
    const Objects& objects_;
    VARIANT outer_;
    VARIANT middle_;  // what outer_ refers to, when it is a reference
    VARIANT inner_;   // what middle_ refers to, when it is one, too
};

}  // namespace kavrel::tests
