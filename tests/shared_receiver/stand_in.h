// The control of the stand-in for the receiver-sharing product: an in-process COM server of ours
// that offers what the product offers and does what a test in the same process says.
#pragma once

#include <oaidl.h>
#include <windows.h>

namespace kavrel::tests {

// One per process, for all its objects and connections.
// Thread safety: every member may be called from any thread.
class SharedReceiverStandIn {
  public:
    // As if newly loaded, sinks that are still held included.
    virtual void Reset() = 0;

    // What the method with this number answers, with an error object when there is a description.
    virtual void Answer(int method, HRESULT status, const wchar_t* description) = 0;

    // The calls of methods so far: "6(1) 4() ".
    virtual const char* calls() const = 0;

    // Whether the object has the event interface at all.
    virtual void OfferEvents(bool offer) = 0;

    // Go on raising events at sinks that were disconnected.
    virtual void KeepSinks(bool keep) = 0;

    // Raises an event at every sink, on the calling thread; a null value leaves out the argument.
    virtual void Raise(DISPID event, VARIANT* value) = 0;

    virtual int objects() const = 0;
    virtual int sinks() const = 0;

  protected:
    ~SharedReceiverStandIn() = default;
};

// The DLL exports a function of this type under this name.
using GetSharedReceiverStandIn = SharedReceiverStandIn* (*)();
inline constexpr char kGetSharedReceiverStandIn[] = "GetStandIn";

}  // namespace kavrel::tests
