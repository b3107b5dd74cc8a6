#include "results/rebuilt_sentence.h"

#include <string>

#include "nmea/sentence_generation.h"
#include "results/speed.h"

namespace kavrel {
namespace {

Ref<NmeaSentence> SentenceOf(const std::string& text) {
    auto sentence = MakeRef<NmeaSentence>();
    sentence->SetText(text);
    return sentence;
}

// The values that every decoded object has, with the texts that a GeneratedFix refers to.
class FixText {
  public:
    explicit FixText(DecodedSentence& decoded) {
        const NmeaTime time = decoded.time().value_or(NmeaTime::UtcNow());
        time_ = time.Format(TimeStyle::NmeaTime);
        if (time.HasDate()) date_ = time.Format(TimeStyle::NmeaDate);
        fix_ = {.time = time_, .date = date_, .isValid = decoded.Valid(), .position = {}};
        const Ref<Position> position = decoded.MakePosition();
        if (!position) return;
        const double altitudeMetres = position->Altitude(0);
        fix_.position = {.latitudeDegrees = position->Latitude(),
                         .longitudeDegrees = position->Longitude(),
                         .altitudeMetres = altitudeMetres,
                         .geoidSeparationMetres = position->Altitude(1) - altitudeMetres};
    }
    FixText(const FixText&) = delete;
    FixText& operator=(const FixText&) = delete;

    const GeneratedFix& fix() const { return fix_; }

  private:
    std::string time_;
    std::string date_;
    GeneratedFix fix_;
};

std::string TextOf(NmeaRmc& rmc) {
    const MovementValues movement{.speedKnots = rmc.GroundSpeed(kSpeedKnots),
                                  .headingDegrees = rmc.Heading(),
                                  .magneticVariationDegrees = rmc.MagneticVariation(),
                                  .isValid = rmc.Valid()};
    return GenerateRmc(FixText(rmc).fix(), movement);
}

}  // namespace

Ref<NmeaSentence> RebuildSentence(NmeaRmc& rmc) {
    return SentenceOf(TextOf(rmc));
}

void NmeaRmc::Rewrite(NmeaSentence& sentence) {
    sentence.SetText(TextOf(*this));
}

Ref<NmeaSentence> RebuildSentence(NmeaGll& gll) {
    return SentenceOf(GenerateGll(FixText(gll).fix()));
}

Ref<NmeaSentence> RebuildSentence(NmeaGga& gga) {
    return SentenceOf(GenerateGga(FixText(gga).fix(),
                                  {.satellites = gga.SatellitesInView(), .hdop = gga.Hdop()}));
}

Ref<NmeaSentence> RebuildSentence(const Movement& movement) {
    return SentenceOf(GenerateVtg(movement.values()));
}

}  // namespace kavrel
