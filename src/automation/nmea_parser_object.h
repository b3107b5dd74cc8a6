// The automation class NmeaParser, which clients create, with its events.
#pragma once

#include <unknwn.h>

#include "frame/com_ref.h"

namespace kavrel {

// A new object around a new record; null when memory is short.
ComRef<IDispatch> CreateNmeaParserObject();

}  // namespace kavrel
