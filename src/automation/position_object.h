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

// Gives a client the position of a fix or a sentence. Without one it succeeds, too: the result is a
// null object. E_POINTER without a result.
HRESULT ReturnPosition(Ref<Position> record, VARIANT* result);

}  // namespace kavrel
