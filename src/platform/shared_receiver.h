// SharedReceiver: the object of the receiver-sharing product, "RavelinApi::Simple". One method per
// call that the library makes on it; no logic.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kavrel {

// The status of a call (a COM result: negative is a failure), with the error text of a failed one.
struct [[nodiscard]] SharedReceiverResult {
    std::int32_t status = 0;
    std::string errorText;

    bool IsFailure() const { return status < 0; }
};

// Receives the product's event 20, on whichever thread the product raises it.
class SharedReceiverListener {
  public:
    virtual ~SharedReceiverListener() = default;

    // A text, each character cut to 8 bits.
    virtual void OnText(std::string_view text) = 0;

    // The event came without a value.
    virtual void OnClosed() = 0;
};

// Thread safety: none; but for the listener, everything happens on one thread at a time.
class SharedReceiver {
  public:
    virtual ~SharedReceiver() = default;

    // Creates the product's object. A failure means that the product is not installed.
    virtual SharedReceiverResult Create() = 0;

    // Connects the listener to the object's events. The listener outlives the connection.
    // REQUIRES: created.
    virtual SharedReceiverResult Connect(SharedReceiverListener& listener) = 0;

    // The object's methods, by number, behind the seven slots that every automation object has.
    // REQUIRES: created.
    virtual SharedReceiverResult CallMethod1(std::int32_t argument) = 0;
    virtual SharedReceiverResult CallMethod2(std::int32_t argument) = 0;
    virtual SharedReceiverResult CallMethod4() = 0;
    virtual SharedReceiverResult CallMethod6(std::int32_t argument) = 0;

    // Disconnects the listener, which is not called any more once this returns, and drops the
    // object. Nothing when there is none.
    virtual void Release() = 0;
};

}  // namespace kavrel
