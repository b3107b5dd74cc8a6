// The automation class Position: created by clients, and handed out with fixes and sentences.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "geodesy/position.h"

namespace kavrel {

// A new object around a new record; null when memory is short.
ComRef<IDispatch> CreatePositionObject();

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapPosition(Ref<Position> record);

}  // namespace kavrel
