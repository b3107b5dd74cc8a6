// The automation class ComStatus: the state of the serial port.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/com_status.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapComStatus(Ref<ComStatus> record);

}  // namespace kavrel
