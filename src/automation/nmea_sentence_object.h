// The automation class NmeaSentence: one sentence as text and as fields.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "nmea/nmea_sentence.h"

namespace kavrel {

// A new object around a record; null for a null record, or when memory is short.
ComRef<IDispatch> WrapNmeaSentence(Ref<NmeaSentence> record);

}  // namespace kavrel
