// What the object of the receiver-sharing product, "RavelinApi::Simple", looks like to COM: what we
// expect of the product, and what the tests' stand-in offers.
#pragma once

#include <oaidl.h>
#include <windows.h>

namespace kavrel {

// {BD989E23-C2D2-46FD-A73B-6B76E8CDC914}
inline constexpr CLSID kSharedReceiverClass = {
    0xBD989E23, 0xC2D2, 0x46FD, {0xA7, 0x3B, 0x6B, 0x76, 0xE8, 0xCD, 0xC9, 0x14}};

// {5A5AD2BF-5A83-42E4-9D1C-446F53CC1F2D}
inline constexpr IID kSharedReceiverInterface = {
    0x5A5AD2BF, 0x5A83, 0x42E4, {0x9D, 0x1C, 0x44, 0x6F, 0x53, 0xCC, 0x1F, 0x2D}};

// {633E9A08-806D-415C-87F8-0B30BD5271D0}, the outgoing dispatch interface.
inline constexpr IID kSharedReceiverEvents = {
    0x633E9A08, 0x806D, 0x415C, {0x87, 0xF8, 0x0B, 0x30, 0xBD, 0x52, 0x71, 0xD0}};

// The event with a text; without one, the receiver has been closed.
inline constexpr DISPID kSharedReceiverDataEvent = 20;

// The dual interface: methods by their place behind the seven of IUnknown and IDispatch.
class SharedReceiverInterface : public IDispatch {
  public:
    STDMETHOD(Method1)(LONG argument) = 0;
    STDMETHOD(Method2)(LONG argument) = 0;
    STDMETHOD(Method3)() = 0;  // never called
    STDMETHOD(Method4)() = 0;
    STDMETHOD(Method5)() = 0;  // never called
    STDMETHOD(Method6)(LONG argument) = 0;
};

}  // namespace kavrel
