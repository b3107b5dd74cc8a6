// What clients may hand to a position: variables for results, objects of others, references and
// null pointers. What its members give is in tests/data/automation/position.txt.
#include <gtest/gtest.h>
#include <objsafe.h>

#include <string>
#include <utility>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/positions.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr const char* kNoObject = "80004002 Parameter not a valid object! (Position Class)";

// A variant that refers to a plain variable, as languages with types pass them.
template <typename Value>
Var RefTo(VARTYPE type, Value& value) {
    Var reference;
    V_VT(reference.get()) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(reference.get()) = &value;
    return reference;
}

// Four variables of a script, and the arguments that refer to them.
struct DmsVariables {
    Var values[4];
    Vars arguments;

    DmsVariables() {
        for (Var& value : values)
            arguments.push_back(Var::To(value));
    }
    std::string Read() const {
        std::string text;
        for (const Var& value : values)
            text += Describe(value) + ' ';
        return text;
    }
};

using PositionTest = AutomationTest;

TEST_F(PositionTest, DmsIntoVariants) {
    const ComPtr<IDispatch> p = PositionAt(-10.51, 18.05);
    // What is in them before does not matter and is freed.
    DmsVariables dms;
    dms.values[0] = 5;
    dms.values[2] = L"text";
    dms.values[3] = p.Get();
    ExpectSteps(p.Get(), {{L"LatitudeDMS", dms.arguments, ""}});
    EXPECT_EQ("I2 10 I2 30 R8 36 BSTR 'S' ", dms.Read());
    ExpectSteps(p.Get(), {{L"LongitudeDMS", dms.arguments, ""}});
    EXPECT_EQ("I2 18 I2 3 R8 0 BSTR 'E' ", dms.Read());

    // A failing call fills them all the same.
    ExpectSteps(p.Get(),
                {{L"=Easting", {1}, ""},
                 {L"LatitudeDMS", dms.arguments, "80042713 Grid not set! (Position Class)"}});
    EXPECT_EQ("I2 10 I2 30 R8 36 BSTR 'S' ", dms.Read());

    // Seconds are rounded to a thousandth, to the last bit.
    for (const auto& [rads, seconds] :
         {std::pair{0.5, 52.403}, {1.0, 44.806}, {-0.123456789, 24.791}, {1.5, 37.209}}) {
        ExpectSteps(p.Get(), {{L"=LatitudeRads", {rads}, ""}, {L"LatitudeDMS", dms.arguments, ""}});
        EXPECT_EQ(seconds, V_R8(dms.values[2].get()));
    }
}

TEST_F(PositionTest, DmsIntoTypedVariables) {
    const ComPtr<IDispatch> p = PositionAt(-10.51, -18.05);
    SHORT degrees = 0;
    LONG minutes = 0;
    float seconds = 0;
    BSTR hemisphere = SysAllocString(L"what was in it before is freed");
    ExpectSteps(p.Get(), {{L"LatitudeDMS",
                           {RefTo(VT_I2, degrees), RefTo(VT_I4, minutes), RefTo(VT_R4, seconds),
                            RefTo(VT_BSTR, hemisphere)},
                           ""}});
    EXPECT_EQ(10, degrees);
    EXPECT_EQ(30, minutes);
    EXPECT_EQ(36.0F, seconds);
    EXPECT_STREQ(L"S", hemisphere);
    SysFreeString(hemisphere);

    CHAR tooSmall = 7;
    DmsVariables variables;
    variables.arguments[0] = RefTo(VT_I1, tooSmall);
    EXPECT_EQ(DISP_E_OVERFLOW,
              Call(PositionAt(0, 179).Get(), L"LongitudeDMS", variables.arguments).status);
    EXPECT_EQ(7, tooSmall);
}

TEST_F(PositionTest, DmsNeedsSomethingToWriteTo) {
    const ComPtr<IDispatch> p = NewPosition();
    const DmsVariables good;
    LONG number = 7;  // "N" is none
    for (unsigned place = 0; place < 4; ++place) {
        Vars bad = {5, Var(), Var::Missing(), Var::Of(VT_BYREF | VT_VARIANT),
                    Var::Of(VT_BYREF | VT_R8)};
        if (place == 3) bad.push_back(RefTo(VT_I4, number));
        for (const Var& variable : bad) {
            Vars arguments = good.arguments;
            arguments[place] = variable;
            const CallResult call = Call(p.Get(), L"LatitudeDMS", arguments);
            EXPECT_EQ(DISP_E_TYPEMISMATCH, call.status) << place << " " << Describe(variable);
            EXPECT_EQ(3 - place, call.argumentError);
        }
    }
    EXPECT_EQ(7, number);
    EXPECT_EQ(DISP_E_BADPARAMCOUNT,
              Call(p.Get(), L"LatitudeDMS", {good.arguments[0], good.arguments[1]}).status);
}

TEST_F(PositionTest, CompiledClientsPassingNull) {
    ComPtr<IPosition> p;
    ASSERT_EQ(S_OK, NewPosition().As(&p));
    VARIANT v;
    VariantInit(&v);
    for (const auto member : {&IPosition::LatitudeDMS, &IPosition::LongitudeDMS}) {
        EXPECT_EQ(E_POINTER, (p.Get()->*member)(nullptr, &v, &v, &v));
        EXPECT_EQ(E_POINTER, (p.Get()->*member)(&v, nullptr, &v, &v));
        EXPECT_EQ(E_POINTER, (p.Get()->*member)(&v, &v, nullptr, &v));
        EXPECT_EQ(E_POINTER, (p.Get()->*member)(&v, &v, &v, nullptr));
    }
    EXPECT_EQ(VT_EMPTY, V_VT(&v));
    EXPECT_EQ(E_POINTER, p->get_Latitude(nullptr));
    EXPECT_EQ(E_POINTER, p->get_ModifiedCount(nullptr));
    EXPECT_EQ(E_POINTER, p->Copy(nullptr));
    EXPECT_EQ(E_POINTER, p->Altitude(v, nullptr));
    EXPECT_EQ(E_POINTER, p->IsSameGrid(v, nullptr));
    EXPECT_EQ(E_POINTER, p->Distance(v, v, nullptr));
}

// Claims to be a position, but is none of ours: it is refused, not cast.
class FakePosition final : public IDispatch {
  public:
    STDMETHODIMP QueryInterface(REFIID id, void** object) override {
        const bool isOffered = id == IID_IUnknown || id == IID_IDispatch || id == IID_IPosition;
        *object = isOffered ? this : nullptr;
        return isOffered ? S_OK : E_NOINTERFACE;
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

TEST_F(PositionTest, WrongObjectsAreRefused) {
    const ComPtr<IDispatch> p = NewPosition();
    const ComPtr<IDispatch> grid = CreateByName(L"KavrelCE.CustomGrid");
    const ComPtr<IDispatch> datum = CreateByName(L"KavrelCE.CustomDatum");
    FakePosition fake;
    const Vars wrong = {&fake, 5, L"text", true, 1.5, Var(), Var::Missing(), CreateParser().Get()};
    struct Case {
        const wchar_t* member;
        Vars more;
        IDispatch* wrong[2];
        const char* null;
    };
    const char* const nullPosition = "80042713 Position may not be null. (Position Class)";
    const Case cases[] = {
        {L"Distance", {1}, {grid.Get(), datum.Get()}, nullPosition},
        {L"Bearing", {1}, {grid.Get(), datum.Get()}, nullPosition},
        {L"IsSameDatum", {}, {grid.Get(), datum.Get()}, "BOOL 0"},
        {L"IsSameGrid", {}, {grid.Get(), datum.Get()}, "BOOL 0"},
        {L"MakeSameDatum", {}, {grid.Get(), datum.Get()}, ""},
        {L"MakeSameGrid", {}, {grid.Get(), datum.Get()}, ""},
        {L"&CustomDatum",
         {},
         {grid.Get(), p.Get()},
         "80042713 CustomDatum may not be null. (Position Class)"},
        {L"&CustomGrid",
         {},
         {datum.Get(), p.Get()},
         "80042713 CustomGrid may not be null. (Position Class)"},
    };
    for (const Case& test : cases) {
        const auto expect = [&](const Var& object, const char* outcome) {
            Vars arguments = {object};
            arguments.insert(arguments.end(), test.more.begin(), test.more.end());
            ExpectSteps(p.Get(), {{test.member, arguments, outcome}});
        };
        for (const Var& object : wrong)
            expect(object, kNoObject);
        for (IDispatch* const object : test.wrong)
            expect(object, kNoObject);
        expect(static_cast<IDispatch*>(nullptr), test.null);
        expect(Var::Of(VT_NULL), test.null);
    }
    ExpectSteps(p.Get(), {{L"ModifiedCount", {}, "I4 0"}});
}

TEST_F(PositionTest, ArgumentsMayBeGivenByReference) {
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
        ExpectSteps(p.Get(), {{L"Distance", {form, 2}, "R8 0.0174533"}});
    }

    BSTR text = SysAllocString(L"31U");
    Var textVariable = L"31U";
    short number = 31;
    for (const Var& form : {RefTo(VT_BSTR, text), Var::To(textVariable), RefTo(VT_I2, number)}) {
        ExpectSteps(p.Get(), {{L"=Grid", {1}, ""},
                              {L"=Zone", {32}, ""},
                              {L"=Zone", {form}, ""},
                              {L"Zone", {}, "BSTR '31N'"}});
    }
    SysFreeString(text);
}

// A failing member has written its result, which is 0.
TEST_F(PositionTest, AFailingMemberHasWrittenItsResult) {
    ComPtr<IPosition> p;
    ASSERT_EQ(S_OK, NewPosition().As(&p));
    Var result = L"something to be freed";
    EXPECT_EQ(static_cast<HRESULT>(0x80042713),
              p->Distance(*Var(p.Get()).get(), *Var(4).get(), result.get()));
    EXPECT_EQ("R8 0", Describe(result));
    EXPECT_TRUE(TakeErrorObject().value().interfaceId == IID_IPosition);
}

ComPtr<IObjectSafety> SafetyOf(const ComPtr<IDispatch>& object) {
    ComPtr<IObjectSafety> safety;
    object->QueryInterface(IID_IObjectSafety, reinterpret_cast<void**>(safety.GetAddressOf()));
    return safety;
}

TEST_F(PositionTest, ObjectSafety) {
    constexpr DWORD kBoth = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
    const ComPtr<IDispatch> p = NewPosition();
    const ComPtr<IObjectSafety> safety = SafetyOf(p);
    ASSERT_TRUE(safety);
    DWORD supported = 0;
    DWORD enabled = 0;
    for (const IID& id : {IID_IDispatch, IID_IPosition}) {
        EXPECT_EQ(S_OK, safety->GetInterfaceSafetyOptions(id, &supported, &enabled));
        EXPECT_EQ(kBoth, supported);
        EXPECT_EQ(kBoth, enabled);
        for (const DWORD mask : {DWORD{0}, DWORD{INTERFACESAFE_FOR_UNTRUSTED_DATA}, kBoth})
            EXPECT_EQ(S_OK, safety->SetInterfaceSafetyOptions(id, mask, mask));
        for (const DWORD mask : {DWORD{INTERFACE_USES_DISPEX}, kBoth | 8})
            EXPECT_EQ(E_FAIL, safety->SetInterfaceSafetyOptions(id, mask, mask));
    }
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
    EXPECT_FALSE(SafetyOf(CreateParser()));
    EXPECT_FALSE(SafetyOf(CreateByName(L"KavrelCE.CustomGrid")));
}

}  // namespace

}  // namespace kavrel::tests
