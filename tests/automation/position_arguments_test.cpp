// What clients may hand to a position: variants of every kind, objects of others, null pointers
// and what is no number.
#include <gtest/gtest.h>
#include <objsafe.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/positions.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using PositionArgumentTest = AutomationTest;

TEST_F(PositionArgumentTest, DmsIntoVariants) {
    const ComPtr<IDispatch> p = PositionAt(-10.51, 18.05);
    // What is in them before does not matter and is freed.
    Var degrees = 5;
    Var minutes;
    Var seconds = L"text";
    Var hemisphere = p.Get();
    const Vars to = {Var::To(degrees), Var::To(minutes), Var::To(seconds), Var::To(hemisphere)};
    EXPECT_EQ("", Outcome(Call(p.Get(), L"LatitudeDMS", to)));
    EXPECT_EQ("I2 10 I2 30 R8 36 BSTR 'S'", Describe(degrees) + " " + Describe(minutes) + " " +
                                                Describe(seconds) + " " + Describe(hemisphere));
    EXPECT_EQ("", Outcome(Call(p.Get(), L"LongitudeDMS", to)));
    EXPECT_EQ("I2 18 I2 3 R8 0 BSTR 'E'", Describe(degrees) + " " + Describe(minutes) + " " +
                                              Describe(seconds) + " " + Describe(hemisphere));
}

// A failing call has filled them all the same.
TEST_F(PositionArgumentTest, DmsOfAFailedUpdate) {
    const ComPtr<IDispatch> p = PositionAt(45, 9);
    Put(p.Get(), L"Easting", 1);
    Var out[4];
    const Vars to = {Var::To(out[0]), Var::To(out[1]), Var::To(out[2]), Var::To(out[3])};
    EXPECT_EQ(kNoGrid, Outcome(Call(p.Get(), L"LatitudeDMS", to)));
    EXPECT_EQ("I2 45", Describe(out[0]));
    EXPECT_EQ("BSTR 'N'", Describe(out[3]));
}

// A variant that refers to a plain variable, as languages with types pass them.
template <typename Value>
Var RefTo(VARTYPE type, Value& value) {
    Var reference;
    V_VT(reference.get()) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(reference.get()) = &value;
    return reference;
}

TEST_F(PositionArgumentTest, DmsIntoTypedVariables) {
    const ComPtr<IDispatch> p = PositionAt(-10.51, -18.05);
    LONG degrees = 0;
    float minutes = 0;
    double seconds = 0;
    BSTR hemisphere = SysAllocString(L"what was in it before is freed");
    EXPECT_EQ("", Outcome(Call(p.Get(), L"LatitudeDMS",
                               {RefTo(VT_I4, degrees), RefTo(VT_R4, minutes), RefTo(VT_R8, seconds),
                                RefTo(VT_BSTR, hemisphere)})));
    EXPECT_EQ(10, degrees);
    EXPECT_EQ(30.0F, minutes);
    EXPECT_NEAR(36.0, seconds, 1e-9);
    EXPECT_STREQ(L"S", hemisphere);
    SysFreeString(hemisphere);

    SHORT shortDegrees = 0;
    BSTR minutesText = nullptr;
    LONG wholeSeconds = 1;
    BSTR letter = nullptr;
    EXPECT_EQ("", Outcome(Call(p.Get(), L"LongitudeDMS",
                               {RefTo(VT_I2, shortDegrees), RefTo(VT_BSTR, minutesText),
                                RefTo(VT_I4, wholeSeconds), RefTo(VT_BSTR, letter)})));
    EXPECT_EQ(18, shortDegrees);
    EXPECT_STREQ(L"3", minutesText);
    EXPECT_EQ(0, wholeSeconds);
    EXPECT_STREQ(L"W", letter);
    SysFreeString(minutesText);
    SysFreeString(letter);
}

TEST_F(PositionArgumentTest, DmsNeedsSomethingToWriteTo) {
    const ComPtr<IDispatch> p = NewPosition();
    Var out[4];
    const Vars good = {Var::To(out[0]), Var::To(out[1]), Var::To(out[2]), Var::To(out[3])};
    for (size_t place = 0; place < good.size(); ++place) {
        for (const Var& bad : {Var(5), Var(), Var::Missing(), Var::Of(VT_BYREF | VT_VARIANT),
                               Var::Of(VT_BYREF | VT_R8)}) {
            Vars arguments = good;
            arguments[place] = bad;
            const CallResult call = Call(p.Get(), L"LatitudeDMS", arguments);
            EXPECT_EQ(DISP_E_TYPEMISMATCH, call.status) << place << " " << Describe(bad);
            EXPECT_EQ(3 - place, call.argumentError);
        }
    }
    LONG number = 7;
    Vars arguments = good;
    arguments[3] = RefTo(VT_I4, number);  // "N" is none
    EXPECT_EQ(DISP_E_TYPEMISMATCH, Call(p.Get(), L"LatitudeDMS", arguments).status);
    EXPECT_EQ(7, number);
    EXPECT_EQ(DISP_E_BADPARAMCOUNT, Call(p.Get(), L"LatitudeDMS", {good[0], good[1]}).status);
}

TEST_F(PositionArgumentTest, CompiledClientsPassingNull) {
    const ComPtr<IDispatch> object = NewPosition();
    ComPtr<IPosition> p;
    ASSERT_EQ(S_OK, object.As(&p));
    VARIANT v;
    VariantInit(&v);
    EXPECT_EQ(E_POINTER, p->LatitudeDMS(nullptr, &v, &v, &v));
    EXPECT_EQ(E_POINTER, p->LatitudeDMS(&v, nullptr, &v, &v));
    EXPECT_EQ(E_POINTER, p->LongitudeDMS(&v, &v, nullptr, &v));
    EXPECT_EQ(E_POINTER, p->LongitudeDMS(&v, &v, &v, nullptr));
    EXPECT_EQ(VT_EMPTY, V_VT(&v));

    using Getter = HRESULT (STDMETHODCALLTYPE IPosition::*)(VARIANT*);
    for (const Getter getter :
         {&IPosition::get_LatitudeRads, &IPosition::get_LongitudeRads, &IPosition::get_Latitude,
          &IPosition::get_Longitude, &IPosition::get_Datum, &IPosition::get_Grid,
          &IPosition::get_Easting, &IPosition::get_Northing, &IPosition::get_Zone, &IPosition::Copy,
          &IPosition::get_ModifiedCount}) {
        EXPECT_EQ(E_POINTER, (p.Get()->*getter)(nullptr));
    }
    using Query = HRESULT (STDMETHODCALLTYPE IPosition::*)(VARIANT, VARIANT*);
    for (const Query query :
         {&IPosition::LatitudeString, &IPosition::LongitudeString, &IPosition::Altitude,
          &IPosition::IsSameDatum, &IPosition::IsSameGrid}) {
        EXPECT_EQ(E_POINTER, (p.Get()->*query)(v, nullptr));
    }
    EXPECT_EQ(E_POINTER, p->Distance(v, v, nullptr));
    EXPECT_EQ(E_POINTER, p->Bearing(v, v, nullptr));
}

// Whatever may be handed in where a position is wanted.
TEST_F(PositionArgumentTest, WrongObjects) {
    const ComPtr<IDispatch> p = NewPosition();
    const ComPtr<IDispatch> grid = CreateByName(L"KavrelCE.CustomGrid");
    const ComPtr<IDispatch> datum = CreateByName(L"KavrelCE.CustomDatum");
    const ComPtr<IDispatch> parser = CreateParser();
    const Vars neverGood = {5, L"text", true, 1.5, Var(), Var::Missing(), parser.Get()};
    struct Case {
        const wchar_t* member;
        Vars more;
        Vars bad;
    };
    const Case cases[] = {
        {L"Distance", {1}, {grid.Get(), datum.Get()}},
        {L"Bearing", {1}, {grid.Get(), datum.Get()}},
        {L"IsSameDatum", {}, {grid.Get(), datum.Get()}},
        {L"IsSameGrid", {}, {grid.Get(), datum.Get()}},
        {L"MakeSameDatum", {}, {grid.Get(), datum.Get()}},
        {L"MakeSameGrid", {}, {grid.Get(), datum.Get()}},
        {L"&CustomDatum", {}, {grid.Get(), p.Get()}},
        {L"&CustomGrid", {}, {datum.Get(), p.Get()}},
    };
    for (const Case& test : cases) {
        Vars bad = test.bad;
        bad.insert(bad.end(), neverGood.begin(), neverGood.end());
        for (const Var& object : bad) {
            Vars arguments{object};
            arguments.insert(arguments.end(), test.more.begin(), test.more.end());
            ExpectSteps(p.Get(), {{test.member, arguments, kNoObject}});
        }
    }
    ExpectSteps(p.Get(),
                {{L"&CustomDatum",
                  {static_cast<IDispatch*>(nullptr)},
                  Refusal("CustomDatum may not be null.")},
                 {L"&CustomDatum", {Var::Of(VT_NULL)}, Refusal("CustomDatum may not be null.")},
                 {L"&CustomGrid",
                  {static_cast<IDispatch*>(nullptr)},
                  Refusal("CustomGrid may not be null.")},
                 {L"ModifiedCount", {}, "I4 0"}});
}

// An object that claims to be a position but is none of ours is refused, not cast.
class FakePosition final : public IDispatch {
  public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        const bool isOffered = id == IID_IUnknown || id == IID_IDispatch || id == IID_IPosition;
        if (!isOffered) return E_NOINTERFACE;
        *object = this;
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                        UINT*) override {
        return E_NOTIMPL;
    }
};

TEST_F(PositionArgumentTest, ForeignPositionIsRefused) {
    FakePosition fake;
    ExpectSteps(NewPosition().Get(),
                {{L"Distance", {&fake, 1}, kNoObject}, {L"MakeSameGrid", {&fake}, kNoObject}});
}

TEST_F(PositionArgumentTest, ObjectsMayBeGivenByReference) {
    const ComPtr<IDispatch> p = PositionAt(0, 0);
    const ComPtr<IDispatch> other = PositionAt(1, 0);
    IDispatch* pointer = other.Get();
    IUnknown* unknown = other.Get();
    Var variable = other.Get();
    Var byUnknown = Var::Of(VT_UNKNOWN);
    V_UNKNOWN(byUnknown.get()) = unknown;
    unknown->AddRef();
    for (const Var& form :
         {Var::To(variable), RefTo(VT_DISPATCH, pointer), RefTo(VT_UNKNOWN, unknown), byUnknown}) {
        EXPECT_EQ("R8 0.0174533", Outcome(Call(p.Get(), L"Distance", {form, 2})));
    }
}

// Every type that a number can have, and every way of handing it over.
TEST_F(PositionArgumentTest, NumbersOfEveryType) {
    Vars forms = {10, 10.0, L"10", Var::Of(VT_CY)};
    V_CY(forms.back().get()).int64 = 100000;
    for (const VARTYPE type : {VT_I1, VT_UI1, VT_I2, VT_UI2, VT_I4, VT_UI4, VT_I8, VT_UI8, VT_INT,
                               VT_UINT, VT_R4, VT_DATE, VT_DECIMAL}) {
        Var form;
        ASSERT_EQ(S_OK, VariantChangeType(form.get(), Var(10).get(), 0, type)) << type;
        forms.push_back(form);
    }
    Vars passed = forms;
    for (Var& form : forms)
        passed.push_back(Var::To(form));
    float single = 10;
    std::int16_t small = 10;
    std::int64_t large = 10;
    BSTR text = SysAllocString(L"10");
    passed.insert(passed.end(), {RefTo(VT_R4, single), RefTo(VT_I2, small), RefTo(VT_I8, large),
                                 RefTo(VT_BSTR, text)});
    const ComPtr<IDispatch> p = PositionAt(0, 9, 1);
    for (const Var& form : passed) {
        SCOPED_TRACE(form.type());
        ExpectSteps(p.Get(), {{L"=Latitude", {0}, ""},
                              {L"=Latitude", {form}, ""},
                              {L"Latitude", {}, "R8 10"},
                              {L"=Grid", {0}, ""},
                              {L"=Grid", {form}, ""},
                              {L"Grid", {}, "I2 10"},
                              {L"=Grid", {1}, ""},
                              {L"=Zone", {form}, ""},
                              {L"=Zone", {9}, ""}});
    }
    SysFreeString(text);
}

// No number, and what it does in every place that takes a double.
TEST_F(PositionArgumentTest, NeitherNumberNorCrash) {
    for (const double odd : {kNan, kInfinity, -kInfinity, 1e308, -1e308}) {
        SCOPED_TRACE(odd);
        const bool isFinite = std::fabs(odd) < kInfinity;
        const ComPtr<IDispatch> p = PositionAt(52, 9, 1);
        const ComPtr<IDispatch> other = PositionAt(51, 9, 1);
        ExpectSteps(p.Get(), {{L"Zone", {}, "BSTR '32U'"},
                              {L"=Latitude", {odd}, kLatitude},
                              {L"=LatitudeRads", {odd}, kLatitude},
                              {L"SetLatitudeDMS", {odd, 0, 0, L"N"}, kDegrees},
                              {L"Latitude", {}, "R8 52"},
                              {L"=Easting", {odd}, ""},
                              {L"Latitude", {}, kOutside},
                              {L"Distance", {other.Get(), 1}, kOutside},
                              {L"=Longitude", {9}, ""},
                              {L"=Latitude", {52}, ""},
                              {L"Easting", {}, "R8 500000"},
                              {L"=Northing", {odd}, ""},
                              {L"Zone", {}, "BSTR '32U'"},
                              {L"LongitudeString", {0}, kOutside},
                              {L"=Longitude", {9}, ""},
                              {L"=Latitude", {52}, ""},
                              {L"SetAltitude", {0, odd}, ""},
                              {L"SetAltitude", {1, odd}, ""}});
        const double altitude = Number(p.Get(), L"Altitude", {0});
        EXPECT_TRUE(altitude == odd || (odd != odd && altitude != altitude));

        // Longitudes are not checked, so that the position holds what is no place at all.
        for (const wchar_t* member : {L"=Longitude", L"=LongitudeRads"}) {
            const ComPtr<IDispatch> q = PositionAt(52, 9, 1);
            ExpectSteps(q.Get(), {{member, {odd}, ""}});
            if (!isFinite) ExpectSteps(q.Get(), {{L"Easting", {}, kOutside}});
            EXPECT_GE(14U, Call(q.Get(), L"LongitudeString", {0}).value.text().size());
            EXPECT_GE(14U, Call(q.Get(), L"LongitudeString", {1}).value.text().size());
            Var out[4];
            EXPECT_EQ("", Outcome(Call(q.Get(), L"LongitudeDMS",
                                       {Var::To(out[0]), Var::To(out[1]), Var::To(out[2]),
                                        Var::To(out[3])})));
            Number(q.Get(), L"Distance", {other.Get(), 1});
            Number(q.Get(), L"Bearing", {other.Get(), 1});
            EXPECT_EQ("", Outcome(Put(q.Get(), L"Datum", 5)));
            Number(q.Get(), L"Latitude");
        }
        const ComPtr<IDispatch> r = PositionAt(52, 9, 1);
        ExpectSteps(r.Get(), {{L"SetLatitudeDMS", {10, odd, odd, L"S"}, ""},
                              {L"SetLongitudeDMS", {odd, odd, odd, L"W"}, ""},
                              {L"Easting", {}, kOutside}});
        for (const int method : {1, 2, 3}) {
            for (const Vars& arguments : {Vars{odd, 0.0, method}, Vars{1.0, odd, method}}) {
                const ComPtr<IDispatch> moved = PositionAt(52, 9, 1);
                const std::string outcome = Outcome(Call(moved.Get(), L"Move", arguments));
                if (isFinite) continue;
                EXPECT_EQ(method == 3 ? "" : kLatitude, outcome);
                const CallResult latitude = Get(moved.Get(), L"Latitude");
                EXPECT_EQ(method == 3 ? kOutside : "R8 52", Outcome(latitude));
            }
        }
    }
}

ComPtr<IObjectSafety> SafetyOf(IDispatch* object) {
    ComPtr<IObjectSafety> safety;
    object->QueryInterface(IID_IObjectSafety, reinterpret_cast<void**>(safety.GetAddressOf()));
    return safety;
}

TEST_F(PositionArgumentTest, ObjectSafety) {
    constexpr DWORD kBoth = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
    const ComPtr<IDispatch> p = NewPosition();
    const ComPtr<IObjectSafety> safety = SafetyOf(p.Get());
    ASSERT_TRUE(safety);
    for (const IID& id : {IID_IDispatch, IID_IPosition}) {
        DWORD supported = 0;
        DWORD enabled = 0;
        EXPECT_EQ(S_OK, safety->GetInterfaceSafetyOptions(id, &supported, &enabled));
        EXPECT_EQ(kBoth, supported);
        EXPECT_EQ(kBoth, enabled);
        for (const DWORD mask : {DWORD{0}, DWORD{INTERFACESAFE_FOR_UNTRUSTED_DATA}, kBoth}) {
            EXPECT_EQ(S_OK, safety->SetInterfaceSafetyOptions(id, mask, mask));
        }
        EXPECT_EQ(E_FAIL, safety->SetInterfaceSafetyOptions(id, INTERFACE_USES_DISPEX, 0));
        EXPECT_EQ(E_FAIL, safety->SetInterfaceSafetyOptions(id, kBoth | 8, kBoth | 8));
    }
    DWORD supported = 1;
    DWORD enabled = 1;
    EXPECT_EQ(E_NOINTERFACE,
              safety->GetInterfaceSafetyOptions(IID_INmeaParser, &supported, &enabled));
    EXPECT_EQ(0U, supported | enabled);
    EXPECT_EQ(E_NOINTERFACE, safety->SetInterfaceSafetyOptions(IID_IPersist, kBoth, kBoth));
    EXPECT_EQ(E_POINTER, safety->GetInterfaceSafetyOptions(IID_IDispatch, nullptr, &enabled));
    EXPECT_EQ(E_POINTER, safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, nullptr));

    ComPtr<IUnknown> identity;
    ComPtr<IUnknown> other;
    EXPECT_EQ(S_OK, safety.As(&identity));
    EXPECT_EQ(S_OK, p.As(&other));
    EXPECT_EQ(other.Get(), identity.Get());
    EXPECT_FALSE(SafetyOf(CreateParser().Get()));
    EXPECT_FALSE(SafetyOf(CreateByName(L"KavrelCE.CustomGrid").Get()));
}

}  // namespace

}  // namespace kavrel::tests
