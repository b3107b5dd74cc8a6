// The automation class CustomDatum: a datum that a script describes.
#pragma once

#include <oaidl.h>

#include "frame/com_ref.h"
#include "geodesy/custom_datum.h"

namespace kavrel {

// A new object around a new record; null when memory is short.
ComRef<IDispatch> CreateCustomDatumObject();

// A new object around a record; null for a null record.
ComRef<IDispatch> WrapCustomDatum(Ref<CustomDatum> record);

}  // namespace kavrel
