// Late binding: every member answers alike through Invoke, through the type information's own
// Invoke and through the vtable, and Invoke treats faulty calls as the platform does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>
#include <ostream>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

// A class, and how a test gets an object of it.
struct ObjectMaker {
    const char* interfaceName;
    const IID& interfaceId;
    ComPtr<IDispatch> (*make)();
};

void PrintTo(const ObjectMaker& maker, std::ostream* out) {
    *out << maker.interfaceName;
}

const ObjectMaker kObjects[] = {
    {"INmeaParser", IID_INmeaParser, [] { return CreateParser(); }},
    {"INmeaSentence", IID_INmeaSentence, [] { return MakeSentence(L"$GPXXX,7,,text"); }},
    {"IPosition", IID_IPosition, [] { return CreateDirectly(CLSID_Position); }},
    {"ICustomGrid", IID_ICustomGrid, [] { return CreateDirectly(CLSID_CustomGrid); }},
    {"ICustomDatum", IID_ICustomDatum, [] { return CreateDirectly(CLSID_CustomDatum); }},
};

constexpr WORD kPutKinds = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

bool IsPut(const MemberDescription& member) {
    return (member.kind & kPutKinds) != 0;
}

size_t InCount(const MemberDescription& member) {
    return static_cast<size_t>(
        std::count_if(member.parameters.begin(), member.parameters.end(),
                      [](const std::string& text) { return text.starts_with("[in"); }));
}

bool HasOutArguments(const MemberDescription& member) {
    return std::any_of(member.parameters.begin(), member.parameters.end(),
                       [](const std::string& text) { return text.starts_with("[out] "); });
}

std::wstring Wide(const std::string& text) {
    return {text.begin(), text.end()};
}

Arguments ArgumentsOf(const MemberDescription& member, const Var& value) {
    Arguments arguments{Vars(InCount(member), value), {}};
    if (IsPut(member)) arguments.names = {DISPID_PROPERTYPUT};
    return arguments;
}

// Values that mean something else to each conversion. None opens a port: that is not a matter of
// late binding.
Vars SampleValues(const MemberDescription& member) {
    if (member.name == "PortEnabled") return {0, false, L"0"};
    return {0, 1, 2, -1, 28, 29, L"3", L"", L"RMC", L"PGRME", L"no number", 3.7, true};
}

// The same outcome, as far as both tell it.
void ExpectSame(const CallResult& expected, const CallResult& actual) {
    EXPECT_EQ(expected.failure, actual.failure);
    EXPECT_EQ(Describe(expected.value), Describe(actual.value));
    ASSERT_EQ(expected.error.has_value(), actual.error.has_value());
    if (!expected.error.has_value()) return;
    EXPECT_EQ(expected.error->description, actual.error->description);
    EXPECT_EQ(expected.error->source, actual.error->source);
}

class MemberTest : public AutomationTest, public testing::WithParamInterface<ObjectMaker> {
  protected:
    const std::vector<MemberDescription>& Members() {
        return InterfaceNamed(GetParam().interfaceName).members;
    }
};

INSTANTIATE_TEST_SUITE_P(All, MemberTest, testing::ValuesIn(kObjects),
                         [](const auto& test) { return std::string(test.param.interfaceName); });

TEST_P(MemberTest, NamesGiveTheDispidsOfTheTypeLibrary) {
    const ComPtr<IDispatch> object = GetParam().make();
    ASSERT_TRUE(object);
    ASSERT_FALSE(Members().empty());
    for (const MemberDescription& member : Members()) {
        std::wstring name = Wide(member.name);
        EXPECT_EQ(member.id, IdOf(object.Get(), name.c_str())) << member.name;
        std::transform(name.begin(), name.end(), name.begin(), std::towupper);
        EXPECT_EQ(member.id, IdOf(object.Get(), name.c_str())) << member.name;
        std::transform(name.begin(), name.end(), name.begin(), std::towlower);
        EXPECT_EQ(member.id, IdOf(object.Get(), name.c_str())) << member.name;
        EXPECT_EQ(DISPID_UNKNOWN, IdOf(object.Get(), (name + L"x").c_str())) << member.name;
        name.pop_back();
        EXPECT_EQ(DISPID_UNKNOWN, IdOf(object.Get(), name.c_str())) << member.name;
    }
}

TEST_P(MemberTest, ThreeWaysGiveTheSame) {
    for (const MemberDescription& member : Members()) {
        if (HasOutArguments(member)) continue;
        for (const Var& value : SampleValues(member)) {
            SCOPED_TRACE(member.name + "(" + Describe(value) + ")");
            const Arguments arguments = ArgumentsOf(member, value);
            const auto kind = static_cast<WORD>(member.kind);

            // The call and what can be seen of it afterwards, each on an object of its own.
            const auto callAndLook = [](const auto& call) {
                const ComPtr<IDispatch> object = GetParam().make();
                std::vector<CallResult> results{call(object.Get())};
                for (const wchar_t* look :
                     {L"Sentence", L"LatitudeRads", L"Zone", L"E2", L"Datum"}) {
                    results.push_back(Get(object.Get(), look));
                }
                return results;
            };
            const auto late = callAndLook(
                [&](IDispatch* object) { return InvokeById(object, member.id, kind, arguments); });
            const auto described = callAndLook([&](IDispatch* object) {
                return InvokeByTypeInfo(object, member.id, kind, arguments);
            });
            const auto early = callAndLook([&](IDispatch* object) {
                return CallVtable(object, GetParam().interfaceId, member, arguments.values);
            });
            ASSERT_EQ(S_OK, early[0].status);
            for (size_t i = 0; i < late.size(); ++i) {
                ExpectSame(early[i], late[i]);
                ExpectSame(described[i], late[i]);
            }
        }
    }
}

TEST_P(MemberTest, OmittedArgumentsAreMissingOnes) {
    for (const MemberDescription& member : Members()) {
        if (IsPut(member) || HasOutArguments(member)) continue;
        SCOPED_TRACE(member.name);
        const auto kind = static_cast<WORD>(member.kind);
        for (size_t given = 0; given <= InCount(member); ++given) {
            const Arguments arguments{Vars(given, Var::Missing()), {}};
            const ComPtr<IDispatch> a = GetParam().make();
            const ComPtr<IDispatch> b = GetParam().make();
            ExpectSame(CallVtable(a.Get(), GetParam().interfaceId, member, {}),
                       InvokeById(b.Get(), member.id, kind, arguments));
        }
    }
}

TEST_P(MemberTest, CountsOfArgumentsAreChecked) {
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        const auto kind = static_cast<WORD>(member.kind);
        const Arguments tooMany{Vars(InCount(member) + 1, Var::Of(VT_EMPTY)), {}};
        EXPECT_EQ(DISP_E_BADPARAMCOUNT, InvokeById(object.Get(), member.id, kind, tooMany).status);
        if (!IsPut(member)) continue;
        EXPECT_EQ(DISP_E_BADPARAMCOUNT, InvokeById(object.Get(), member.id, kind, {}).status);
    }
}

// Hosts that cannot know whether a name is a method or a property ask for both.
TEST_P(MemberTest, KindsOfCallAreChecked) {
    std::map<DISPID, WORD> kinds;
    for (const MemberDescription& member : Members()) {
        kinds[member.id] = static_cast<WORD>(kinds[member.id] | member.kind);
    }
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        const Arguments arguments = ArgumentsOf(member, Var(0));
        for (const WORD kind : {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT,
                                DISPATCH_PROPERTYPUTREF}) {
            if ((kinds[member.id] & kind) != 0) continue;
            EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
                      InvokeById(object.Get(), member.id, kind, arguments).status)
                << kind;
        }
        if (IsPut(member)) continue;
        ExpectSame(
            InvokeById(object.Get(), member.id, static_cast<WORD>(member.kind), arguments),
            InvokeById(object.Get(), member.id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments));
    }
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, InvokeById(object.Get(), 4711, DISPATCH_METHOD, {}).status);
}

TEST_P(MemberTest, FaultyCallsAreRefused) {
    const ComPtr<IDispatch> object = GetParam().make();
    const DISPID id = Members().front().id;
    DISPPARAMS none = {};
    EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
              object->Invoke(id, IID_IUnknown, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr,
                             nullptr, nullptr));
    EXPECT_EQ(E_POINTER, object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, nullptr,
                                        nullptr, nullptr, nullptr));

    LPOLESTR name = const_cast<LPOLESTR>(L"Nothing");
    DISPID found = 0;
    EXPECT_EQ(DISP_E_UNKNOWNNAME,
              object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &found));
    EXPECT_EQ(DISPID_UNKNOWN, found);
    EXPECT_EQ(E_POINTER, object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, nullptr));
    EXPECT_EQ(E_POINTER, object->GetIDsOfNames(IID_NULL, nullptr, 1, LOCALE_USER_DEFAULT, &found));
}

// A host that wants no result, no error text and no argument index passes null for them.
TEST_P(MemberTest, ResultsMayBeUnwanted) {
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        if (HasOutArguments(member)) continue;
        SCOPED_TRACE(member.name);
        Vars values(InCount(member), Var(0));
        std::vector<VARIANT> raw;
        for (Var& value : values)
            raw.push_back(*value.get());
        DISPID put = DISPID_PROPERTYPUT;
        DISPPARAMS parameters = {raw.data(), &put, static_cast<UINT>(raw.size()),
                                 IsPut(member) ? 1U : 0U};
        const HRESULT quiet =
            object->Invoke(member.id, IID_NULL, LOCALE_USER_DEFAULT, static_cast<WORD>(member.kind),
                           &parameters, nullptr, nullptr, nullptr);
        const CallResult full = InvokeById(object.Get(), member.id, static_cast<WORD>(member.kind),
                                           ArgumentsOf(member, Var(0)));
        EXPECT_EQ(full.status, quiet);
    }
    SetErrorInfo(0, nullptr);
}

// Only so many kinds of variant exist, but a host may pass any of them anywhere, with null inside.
TEST_P(MemberTest, NoVariantCrashesAMember) {
    std::vector<VARTYPE> types;
    for (VARTYPE type = VT_EMPTY; type <= VT_UINT_PTR; ++type)
        types.push_back(type);
    for (const int odd : {int{VT_BLOB}, int{VT_CLSID}, int{VT_VECTOR}, 0x0FFF, 0x9000}) {
        types.push_back(static_cast<VARTYPE>(odd));
    }
    const ComPtr<IDispatch> object = GetParam().make();
    for (const MemberDescription& member : Members()) {
        SCOPED_TRACE(member.name);
        const size_t count = InCount(member);
        for (const VARTYPE plain : types) {
            for (const int flags : {0, int{VT_BYREF}, int{VT_ARRAY}, VT_BYREF | VT_ARRAY}) {
                const Var value = Var::Of(static_cast<VARTYPE>(plain | flags));
                for (size_t place = 0; place < count; ++place) {
                    // Not through Var's copies, which know only sensible variants.
                    std::vector<VARIANT> raw(count, *Var().get());
                    raw[place] = *value.get();
                    DISPID put = DISPID_PROPERTYPUT;
                    DISPPARAMS parameters = {raw.data(), &put, static_cast<UINT>(count),
                                             IsPut(member) ? 1U : 0U};
                    Var result;
                    const HRESULT status = object->Invoke(
                        member.id, IID_NULL, LOCALE_USER_DEFAULT, static_cast<WORD>(member.kind),
                        &parameters, IsPut(member) ? nullptr : result.get(), nullptr, nullptr);
                    EXPECT_TRUE(status == S_OK || status == DISP_E_EXCEPTION ||
                                status == DISP_E_TYPEMISMATCH)
                        << std::hex << status << " for type " << (plain | flags);
                }
            }
        }
    }
    SetErrorInfo(0, nullptr);
}

using InvokeTest = AutomationTest;

TEST_F(InvokeTest, ArgumentsMayBeNamed) {
    const ComPtr<IDispatch> parser = CreateParser();
    wchar_t method[] = L"eventinterval";
    wchar_t eventType[] = L"EVENTTYPE";
    wchar_t interval[] = L"Interval";
    LPOLESTR names[] = {method, eventType, interval};
    DISPID ids[3] = {};
    ASSERT_EQ(S_OK, parser->GetIDsOfNames(IID_NULL, names, 3, LOCALE_USER_DEFAULT, ids));
    EXPECT_EQ(15, ids[0]);
    EXPECT_EQ(1, ids[1]);
    EXPECT_EQ(0, ids[2]);

    // EventInterval Interval:=5, EventType:=9 fails by the type, so the names were told apart.
    const auto call = [&](int intervalValue, int typeValue) {
        return InvokeById(parser.Get(), ids[0], DISPATCH_METHOD,
                          {{typeValue, intervalValue}, {ids[1], ids[2]}});
    };
    EXPECT_EQ(S_OK, call(9, 5).status);
    const CallResult refused = call(5, 9);
    EXPECT_EQ(DISP_E_EXCEPTION, refused.status);
    ASSERT_TRUE(refused.error.has_value());
    EXPECT_EQ(L"Unknown event type!", refused.error->description);

    // The first by place, the second by name.
    EXPECT_EQ(S_OK, InvokeById(parser.Get(), ids[0], DISPATCH_METHOD, {{100, 5}, {ids[1]}}).status);
}

// Calls that no compiler makes. Handed to the platform they crashed it.
TEST_F(InvokeTest, OddArgumentNumbersAreRefused) {
    const ComPtr<IDispatch> parser = CreateParser();
    const DISPID interval = IdOf(parser.Get(), L"EventInterval");
    const auto call = [&](const Arguments& arguments) {
        return InvokeById(parser.Get(), interval, DISPATCH_METHOD, arguments).status;
    };
    EXPECT_EQ(S_OK, call({{5, 100}, {1, 0}}));
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, call({{5, 100}, {1, 1}})) << "twice";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, call({{100, 5}, {0}})) << "by place and by number";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, call({{5}, {2}})) << "beyond the last";
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, call({{5}, {-1}}));
    EXPECT_EQ(DISP_E_PARAMNOTFOUND, call({{5}, {DISPID_PROPERTYPUT}})) << "no property";

    const ComPtr<IDispatch> grid = CreateDirectly(CLSID_CustomGrid);
    EXPECT_EQ(DISP_E_BADPARAMCOUNT,
              InvokeById(grid.Get(), IdOf(grid.Get(), L"CustomDatum"),
                         DISPATCH_METHOD | DISPATCH_PROPERTYGET | DISPATCH_PROPERTYPUT,
                         {{Var::Missing()}, {DISPID_PROPERTYPUT}})
                  .status);
}

TEST_F(InvokeTest, UnknownArgumentNameIsRefused) {
    const ComPtr<IDispatch> parser = CreateParser();
    wchar_t method[] = L"EventInterval";
    wchar_t nonsense[] = L"Nonsense";
    LPOLESTR names[] = {method, nonsense};
    DISPID ids[2] = {};
    EXPECT_EQ(DISP_E_UNKNOWNNAME,
              parser->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids));
    EXPECT_EQ(15, ids[0]);
    EXPECT_EQ(DISPID_UNKNOWN, ids[1]);
}

// Simple hosts leave the name of a put's value away.
TEST_F(InvokeTest, PutValueNeedNotBeNamed) {
    const ComPtr<IDispatch> parser = CreateParser();
    const DISPID datum = IdOf(parser.Get(), L"GpsDatum");
    EXPECT_EQ(S_OK, InvokeById(parser.Get(), datum, DISPATCH_PROPERTYPUT, {{3}, {}}).status);
    EXPECT_EQ(DISP_E_EXCEPTION,
              InvokeById(parser.Get(), datum, DISPATCH_PROPERTYPUT, {{29}, {}}).status);
}

TEST_F(InvokeTest, ResultIsOverwrittenNotFreed) {
    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX,a");
    // By convention nobody initialises the result before the call.
    VARIANT result;
    std::fill_n(reinterpret_cast<unsigned char*>(&result), sizeof result, 0xCC);
    DISPPARAMS none = {};
    ASSERT_EQ(S_OK,
              sentence->Invoke(IdOf(sentence.Get(), L"Sentence"), IID_NULL, LOCALE_USER_DEFAULT,
                               DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr));
    EXPECT_EQ("BSTR '$GPXXX,a'", Describe(result));
    VariantClear(&result);
}

}  // namespace

}  // namespace kavrel::tests
