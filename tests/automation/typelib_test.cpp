// The interface that hosts rely on: the type library in the DLL.
//
// KavrelCE.typelib.txt beside this file holds all of it as text, so that no change of the
// interface goes unseen. After a deliberate change, copy the file that the failing test names over
// it and read the difference.

#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "automation/typelib_dump.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr char kGoldenFile[] = KAVREL_TEST_DATA "/../automation/KavrelCE.typelib.txt";
constexpr char kActualFile[] = KAVREL_BUILD "/KavrelCE.typelib.actual.txt";

class TypeLibraryTest : public testing::Test {
  protected:
    void SetUp() override {
        const std::string path = KAVREL_DLL;
        ComPtr<ITypeLib> library;
        ASSERT_EQ(S_OK, LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE,
                                      &library));
        library_ = DescribeTypeLibrary(library.Get());
    }

    const TypeDescription* Find(const std::string& name) const {
        const auto found =
            std::find_if(library_.types.begin(), library_.types.end(),
                         [&name](const TypeDescription& type) { return type.name == name; });
        return found == library_.types.end() ? nullptr : &*found;
    }

    LibraryDescription library_;
};

// An interface's members as they are to be: "name id kinds", the kinds being m(ethod), g(et),
// p(ut) and r (put by reference).
struct InterfaceCase {
    const char* name;
    std::vector<std::string> members;
};

const InterfaceCase kInterfaces[] = {
    {"INmeaParser",
     {"Parse 1 m", "AllEventsGeneric 2 p", "GpsDatum 3 p", "ComPort 4 p", "BaudRate 5 p",
      "PortEnabled 6 p", "NoEvents 7 p", "GetGpsFix 8 m", "GetSatellites 9 m", "GetMovement 10 m",
      "GetQuality 11 m", "GetComStatus 12 m", "WriteData 13 m", "ChecksumMandatory 14 p",
      "EventInterval 15 m"}},
    {"INmeaSentence",
     {"Sentence 1 gp", "Fields 2 m", "FieldsCount 3 g", "Command 4 gp", "FullCommand 5 gp",
      "SetField 6 m"}},
    {"INmeaGGA", {"Position 1 g", "Valid 2 g", "UTC 3 g", "SatellitesInView 4 g", "HDOP 5 g"}},
    {"INmeaGLL", {"Position 1 g", "Valid 2 g", "UTC 3 g"}},
    {"INmeaRMC",
     {"GroundSpeed 1 g", "Position 2 g", "Valid 3 g", "UTC 4 g", "Heading 5 g",
      "MagneticVariation 6 g"}},
    {"IMovement", {"Heading 1 g", "Speed 2 g", "MagneticVariation 3 g"}},
    {"IGpsFix", {"UTC 1 g", "Position 2 g", "FixType 3 g"}},
    {"ISatellites", {"Count 1 g", "Item 0 g", "_NewEnum -4 g"}},
    {"ISatellite", {"ID 1 g", "Elevation 2 g", "Azimuth 3 g", "SNR 4 g", "UsedForFix 5 g"}},
    {"IQuality", {"PDOP 1 g", "HDOP 2 g", "VDOP 3 g"}},
    {"IComStatus", {"ValidNmea 1 g", "ValidFix 2 g", "ComPort 3 g", "BaudRate 4 g"}},
    {"IPosition",
     {"LatitudeDMS 1 m",     "LongitudeDMS 2 m",   "LatitudeString 3 m", "LongitudeString 4 m",
      "Altitude 5 m",        "LatitudeRads 6 gp",  "LongitudeRads 7 gp", "SetLatitudeDMS 8 m",
      "SetLongitudeDMS 9 m", "SetAltitude 10 m",   "Datum 11 gp",        "Grid 12 gp",
      "Easting 13 gp",       "Northing 14 gp",     "Zone 15 gp",         "Latitude 16 gp",
      "Longitude 17 gp",     "Distance 18 m",      "Bearing 19 m",       "Move 20 m",
      "Copy 21 m",           "ModifiedCount 22 g", "IsSameDatum 23 m",   "IsSameGrid 24 m",
      "MakeSameDatum 25 m",  "MakeSameGrid 26 m",  "CustomDatum 27 r",   "CustomGrid 28 r"}},
    {"ICustomDatum",
     {"SemiMajorAxis 1 gp", "E2 2 gp", "DeltaX 3 gp", "DeltaY 4 gp", "DeltaZ 5 gp", "RotX 6 gp",
      "RotY 7 gp", "RotZ 8 gp", "ScaleFactor 9 gp"}},
    {"ICustomGrid",
     {"Datum 1 gp", "CustomDatum 2 gr", "Algorithm 3 gp", "FalseEasting 4 gp", "FalseNorthing 5 gp",
      "LongitudeOfOrigin 6 gp", "LatitudeOfOrigin 7 gp", "ScaleFactor 8 gp", "LatitudeSP1 9 gp",
      "LatitudeSP2 10 gp"}},
    {"_INmeaParserEvents",
     {"Generic 1 m", "GGA 2 m", "GLL 3 m", "RMC 4 m", "OnSatellites 5 m", "OnGpsFix 6 m",
      "OnMovement 7 m", "OnQuality 8 m", "OnComStatus 9 m"}},
};

// The members of `type` in the form of InterfaceCase, in the order of their first appearance.
std::vector<std::string> MembersOf(const TypeDescription& type) {
    const std::map<INVOKEKIND, char> letters = {{INVOKE_FUNC, 'm'},
                                                {INVOKE_PROPERTYGET, 'g'},
                                                {INVOKE_PROPERTYPUT, 'p'},
                                                {INVOKE_PROPERTYPUTREF, 'r'}};
    std::vector<std::string> members;
    for (const MemberDescription& member : type.members) {
        const std::string start = member.name + " " + std::to_string(member.id) + " ";
        auto found =
            std::find_if(members.begin(), members.end(),
                         [&start](const std::string& text) { return text.starts_with(start); });
        if (found == members.end()) found = members.insert(found, start);
        *found += letters.at(member.kind);
    }
    return members;
}

TEST_F(TypeLibraryTest, EqualsTheRecordedInterface) {
    std::ifstream file(kGoldenFile);
    ASSERT_TRUE(file) << kGoldenFile;
    std::stringstream golden;
    golden << file.rdbuf();

    const std::string actual = DumpTypeLibrary(library_);
    if (actual != golden.str()) std::ofstream(kActualFile, std::ios::binary) << actual;
    EXPECT_EQ(golden.str(), actual) << "written to " << kActualFile;
}

TEST_F(TypeLibraryTest, HasTheMembersOfEveryInterface) {
    for (const InterfaceCase& expected : kInterfaces) {
        const TypeDescription* type = Find(expected.name);
        ASSERT_NE(nullptr, type) << expected.name;
        EXPECT_EQ(expected.members, MembersOf(*type)) << expected.name;
    }
    const auto interfaces =
        std::count_if(library_.types.begin(), library_.types.end(),
                      [](const TypeDescription& type) { return type.kind.ends_with("interface"); });
    EXPECT_EQ(static_cast<std::ptrdiff_t>(std::size(kInterfaces)), interfaces);
}

TEST_F(TypeLibraryTest, InterfacesAreDualAndTheEventsAreNot) {
    for (const InterfaceCase& expected : kInterfaces) {
        const TypeDescription* type = Find(expected.name);
        ASSERT_NE(nullptr, type) << expected.name;
        const bool events = std::string(expected.name) == "_INmeaParserEvents";
        EXPECT_EQ(events ? "dispinterface" : "dual interface", type->kind) << expected.name;
        if (events) continue;
        EXPECT_TRUE(type->flags & TYPEFLAG_FOLEAUTOMATION) << expected.name;
        EXPECT_EQ(std::vector<std::string>{"IDispatch"}, type->implements) << expected.name;
    }
}

// A compiled client calls by place: IDispatch ends at 6, and nothing may move.
TEST_F(TypeLibraryTest, VtablesHaveNoGaps) {
    for (const TypeDescription& type : library_.types) {
        if (type.kind != "dual interface") continue;
        int slot = 7;
        for (const MemberDescription& member : type.members) {
            EXPECT_EQ(slot++, member.slot) << type.name << "." << member.name;
        }
    }
}

TEST_F(TypeLibraryTest, ClassesAreCreatableOrNot) {
    const std::map<std::string, bool> classes = {
        {"NmeaParser", true},    {"Position", true},   {"CustomGrid", true}, {"CustomDatum", true},
        {"NmeaSentence", false}, {"NmeaGGA", false},   {"NmeaGLL", false},   {"NmeaRMC", false},
        {"Satellites", false},   {"Satellite", false}, {"Movement", false},  {"Quality", false},
        {"GpsFix", false},       {"ComStatus", false}};
    size_t found = 0;
    for (const TypeDescription& type : library_.types) {
        if (type.kind != "coclass") continue;
        ++found;
        const auto expected = classes.find(type.name);
        ASSERT_NE(classes.end(), expected) << type.name;
        EXPECT_EQ(expected->second, (type.flags & TYPEFLAG_FCANCREATE) != 0) << type.name;

        std::vector<std::string> implements = {"[default] I" + type.name};
        if (type.name == "NmeaParser") implements.push_back("[default source] _INmeaParserEvents");
        EXPECT_EQ(implements, type.implements) << type.name;
    }
    EXPECT_EQ(classes.size(), found);
}

TEST_F(TypeLibraryTest, EverythingHasAHelpString) {
    for (const TypeDescription& type : library_.types) {
        EXPECT_FALSE(type.helpString.empty()) << type.name;
        for (const MemberDescription& member : type.members) {
            EXPECT_FALSE(member.helpString.empty()) << type.name << "." << member.name;
        }
    }
}

// Late-bound hosts can only pass variants, and may leave out every argument that only goes in.
TEST_F(TypeLibraryTest, ParametersAreVariants) {
    for (const TypeDescription& type : library_.types) {
        for (const MemberDescription& member : type.members) {
            if (member.name == "_NewEnum") continue;
            for (const std::string& parameter : member.parameters) {
                std::vector<std::string> allowed = {"[out] VARIANT* ", "[out retval] VARIANT*"};
                const bool onlyIn = member.kind == INVOKE_PROPERTYPUT ||
                                    member.kind == INVOKE_PROPERTYPUTREF ||
                                    type.kind == "dispinterface";
                allowed.push_back(onlyIn ? "[in] VARIANT" : "[in optional] VARIANT ");
                EXPECT_TRUE(std::any_of(
                    allowed.begin(), allowed.end(),
                    [&parameter](const std::string& text) { return parameter.starts_with(text); }))
                    << type.name << "." << member.name << ": " << parameter;
            }
        }
    }
}

// Scripts see the constants of all enumerations in one flat list, whatever their case.
TEST_F(TypeLibraryTest, ConstantsHaveNamesOfTheirOwn) {
    std::set<std::string> names;
    for (const TypeDescription& type : library_.types) {
        for (const ConstantDescription& constant : type.constants) {
            EXPECT_TRUE(constant.name.starts_with("kv")) << constant.name;
            std::string name = constant.name;
            std::transform(name.begin(), name.end(), name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
            EXPECT_TRUE(names.insert(name).second) << constant.name;
        }
    }
    EXPECT_FALSE(names.empty());
}

TEST_F(TypeLibraryTest, ConstantsNumberEveryDatumAndGrid) {
    const TypeDescription* datums = Find("KvDatum");
    const TypeDescription* grids = Find("KvGrid");
    ASSERT_NE(nullptr, datums);
    ASSERT_NE(nullptr, grids);
    ASSERT_EQ(28U, datums->constants.size());
    ASSERT_EQ(53U, grids->constants.size());
    for (size_t i = 0; i < datums->constants.size(); ++i) {
        EXPECT_EQ(static_cast<long>(i + 1), datums->constants[i].value);
    }
    for (size_t i = 0; i < grids->constants.size(); ++i) {
        EXPECT_EQ(static_cast<long>(i), grids->constants[i].value);
    }
}

}  // namespace

}  // namespace kavrel::tests
