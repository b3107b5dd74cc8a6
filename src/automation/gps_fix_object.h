// The automation class GpsFix: time, position and type of one fix.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/gps_fix.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapGpsFix(Ref<GpsFix> record);

}  // namespace kavrel
