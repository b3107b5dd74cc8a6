// The automation class NmeaGLL: a decoded GLL sentence.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/decoded_sentence.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapNmeaGLL(Ref<NmeaGll> record);

}  // namespace kavrel
