#include "frame/object_map.h"

#include "KavrelCE_h.h"
#include "automation/custom_datum_object.h"
#include "automation/custom_grid_object.h"
#include "automation/nmea_parser_object.h"
#include "automation/position_object.h"
#include "frame/resource_ids.h"

namespace kavrel {
namespace {

constexpr ObjectMapEntry kObjectMap[] = {
    {CLSID_NmeaParser, kScriptNmeaParser, &CreateNmeaParserObject},
    {CLSID_Position, kScriptPosition, &CreatePositionObject},
    {CLSID_CustomGrid, kScriptCustomGrid, &CreateCustomGridObject},
    {CLSID_CustomDatum, kScriptCustomDatum, &CreateCustomDatumObject},
};

}  // namespace

std::span<const ObjectMapEntry> ObjectMap() {
    return kObjectMap;
}

}  // namespace kavrel
