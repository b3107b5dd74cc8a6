// The automation class CustomGrid: a grid that a script describes.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "geodesy/custom_grid.h"

namespace kavrel {

// A new object around a new record; null when memory is short.
ComRef<IDispatch> CreateCustomGridObject();

}  // namespace kavrel
