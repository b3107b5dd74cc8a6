// The automation class Movement: heading, speed and magnetic variation.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/movement.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapMovement(Ref<Movement> record);

}  // namespace kavrel
