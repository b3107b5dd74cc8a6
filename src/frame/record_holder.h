// The private way from an automation object to its engine record.
//
// An object that a host hands back may be anything; asking it for this interface tells whether it
// is one of ours, which a cast could not. Never marshalled, and not in the type library.
#pragma once

#include <unknwn.h>

#include "base/record.h"

namespace kavrel {

// {8E1B1D0A-6C0B-4E62-9B5E-3C1C2F0B7A51}
inline constexpr IID kRecordHolderId = {
    0x8e1b1d0a, 0x6c0b, 0x4e62, {0x9b, 0x5e, 0x3c, 0x1c, 0x2f, 0x0b, 0x7a, 0x51}};

struct IRecordHolder : IUnknown {
    // The record of an object of the class; null for an object of another one. The record lives as
    // long as the object: take a Ref to keep it.
    virtual Record* STDMETHODCALLTYPE RecordOfClass(REFCLSID classId) = 0;

  protected:
    ~IRecordHolder() = default;
};

}  // namespace kavrel
