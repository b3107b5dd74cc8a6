// Longitudes brought into a turn.
#pragma once

namespace kavrel {

// Into [-pi, pi]; both ends stay as they are.
double NormaliseLongitude(double longitudeRads);

}  // namespace kavrel
