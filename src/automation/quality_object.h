// The automation class Quality: dilutions of precision.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/quality.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapQuality(Ref<Quality> record);

}  // namespace kavrel
