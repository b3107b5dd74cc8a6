// Which variants the platform's conversion may be given.
#pragma once

#include <oaidl.h>

namespace kavrel {

// False for variants that point nowhere, or to a variant that is a reference itself and may: the
// conversion would follow them.
inline bool IsReadable(const VARIANT& value) {
    const VARTYPE type = V_VT(&value);
    if (type == (VT_BYREF | VT_VARIANT)) return false;
    const bool isPointer =
        (type & (VT_BYREF | VT_ARRAY)) != 0 || type == VT_DISPATCH || type == VT_UNKNOWN;
    return !isPointer || V_BYREF(&value) != nullptr;
}

}  // namespace kavrel
