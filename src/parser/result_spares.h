// The records that the parser fills anew when their receivers have let go of them.
#pragma once

#include "base/spare.h"
#include "results/decoded_sentence.h"
#include "results/gps_fix.h"
#include "results/movement.h"
#include "results/quality.h"
#include "results/satellites.h"

namespace kavrel {

struct ResultSpares {
    Spare<NmeaGga> gga;
    Spare<NmeaGll> gll;
    Spare<NmeaRmc> rmc;
    Spare<GpsFix> fix;
    Spare<Satellites> satellites;
    Spare<Movement> movement;
    Spare<Quality> quality;
};

}  // namespace kavrel
