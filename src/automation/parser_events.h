// How the engine's events reach the sinks of _INmeaParserEvents.
#pragma once

#include "frame/connection_point.h"
#include "parser/event_sink.h"

namespace kavrel {

// Wraps the event's objects and calls the sinks that are connected.
void RaiseParserEvent(ConnectionPoint& sinks, ParserEvent event, Record& object);

}  // namespace kavrel
