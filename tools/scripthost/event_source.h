#pragma once

#include <ocidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <string>
#include <vector>

namespace scripthost {

// The name of one event of a source.
struct EventName {
    DISPID id;
    std::wstring name;
};

// What a sink needs to know of an object's events.
struct EventSource {
    Microsoft::WRL::ComPtr<IConnectionPoint> point;
    IID interfaceId = IID_NULL;
    std::vector<EventName> names;
};

// Finds the event interface of `object` and the names in its type information: the default source
// of the class when the object tells its class (IProvideClassInfo2), else the first connection
// point that the object's type library describes. Fails when there is neither.
HRESULT FindEventSource(IDispatch* object, EventSource* source);

}  // namespace scripthost
