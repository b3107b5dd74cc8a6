// Quality: dilutions of precision of one moment. A snapshot: it never changes while anybody holds
// it.
#pragma once

#include "base/record.h"
#include "nmea/sentence_fields.h"

namespace kavrel {

class Quality final : public Record {
  public:
    explicit Quality(const QualityValues& values) : values_(values) {}
    void Assign(const QualityValues& values) {
        error().Clear();
        values_ = values;
    }

    double Pdop() { return Get(values_.pdop); }
    double Hdop() { return Get(values_.hdop); }
    double Vdop() { return Get(values_.vdop); }

  private:
    double Get(double value) {
        error().Clear();
        return value;
    }

    QualityValues values_;
};

}  // namespace kavrel
