// The automation class Satellites: a collection of the satellites in view.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/satellites.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapSatellites(Ref<Satellites> record);

}  // namespace kavrel
