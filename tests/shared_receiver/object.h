// The stand-in's object: the product's dual interface, and the connection point of its events.
#pragma once

#include <unknwn.h>
#include <windows.h>

namespace kavrel::tests {

// As IClassFactory::CreateInstance.
HRESULT CreateStandInObject(REFIID id, void** object);

}  // namespace kavrel::tests
