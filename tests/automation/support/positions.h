// Positions for tests.
#pragma once

#include "automation/support/library.h"
#include "automation/support/steps.h"

namespace kavrel::tests {

inline Microsoft::WRL::ComPtr<IDispatch> NewPosition() {
    return CreateByName(L"KavrelCE.Position");
}

// On WGS 84, in degrees. No longer untouched; its modified count is 2.
inline Microsoft::WRL::ComPtr<IDispatch> PositionAt(double latitude, double longitude) {
    Microsoft::WRL::ComPtr<IDispatch> position = NewPosition();
    ExpectSteps(position.Get(), {{L"=Latitude", {latitude}, ""}, {L"=Longitude", {longitude}, ""}});
    return position;
}

}  // namespace kavrel::tests
