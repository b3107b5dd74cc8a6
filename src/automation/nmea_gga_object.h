// The automation class NmeaGGA: a decoded GGA sentence.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "results/decoded_sentence.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapNmeaGGA(Ref<NmeaGga> record);

}  // namespace kavrel
