// Positions for tests, and what they answer when they refuse.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "automation/support/library.h"
#include "automation/support/steps.h"

namespace kavrel::tests {

inline std::string Refusal(const std::string& message) {
    return "80042713 " + message + " (Position Class)";
}
inline const std::string kInvalid = Refusal("Invalid parameter!");
inline const std::string kLatitude = Refusal("Invalid latitude. Must be between -PI/2 and PI/2");
inline const std::string kDegrees = Refusal("Invalid value of Degrees. Must be between 0 and 90!");
inline const std::string kBadZone = Refusal("Invalid Zone for this grid!");
inline const std::string kNoGrid = Refusal("Grid not set!");
inline const std::string kOutside = Refusal("Position outside grid");
inline const std::string kNoPosition = Refusal("Position may not be null.");
inline const std::string kNoObject = "80004002 Parameter not a valid object! (Position Class)";

inline Microsoft::WRL::ComPtr<IDispatch> NewPosition() {
    return CreateByName(L"KavrelCE.Position");
}

// On WGS 84, in degrees. No longer untouched; its modified count is 2, with a grid 3.
inline Microsoft::WRL::ComPtr<IDispatch> PositionAt(double latitude, double longitude,
                                                    int grid = 0) {
    Microsoft::WRL::ComPtr<IDispatch> position = NewPosition();
    ExpectSteps(position.Get(), {{L"=Latitude", {latitude}, ""}, {L"=Longitude", {longitude}, ""}});
    if (grid != 0) ExpectSteps(position.Get(), {{L"=Grid", {grid}, ""}});
    return position;
}

}  // namespace kavrel::tests
