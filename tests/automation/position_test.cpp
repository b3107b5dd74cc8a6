// What clients may hand to a position: variables for results, objects of others, references and
// null pointers. What its members give is in tests/data/automation/position.txt.
#include <gtest/gtest.h>
#include <objsafe.h>

#include <string>
#include <utility>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"
#include "automation/support/plain_dispatch.h"
#include "automation/support/positions.h"
#include "automation/support/resources.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

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
    // What is in them before does not matter.
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
    BSTR hemisphere = SysAllocString(L"something else");
    ExpectSteps(p.Get(), {{L"LatitudeDMS",
                           {Var::Reference(VT_I2, &degrees), Var::Reference(VT_I4, &minutes),
                            Var::Reference(VT_R4, &seconds), Var::Reference(VT_BSTR, &hemisphere)},
                           ""}});
    EXPECT_EQ(10, degrees);
    EXPECT_EQ(30, minutes);
    EXPECT_EQ(36.0F, seconds);
    EXPECT_STREQ(L"S", hemisphere);
    SysFreeString(hemisphere);

    CHAR tooSmall = 7;
    DmsVariables variables;
    variables.arguments[0] = Var::Reference(VT_I1, &tooSmall);
    EXPECT_EQ(DISP_E_OVERFLOW,
              Call(PositionAt(0, 179).Get(), L"LongitudeDMS", variables.arguments).status);
    EXPECT_EQ(7, tooSmall);
}

TEST_F(PositionTest, DmsFreesWhatIsInVariables) {
    const ComPtr<IDispatch> p = PositionAt(0, 0);
    const auto read = [&p] {
        DmsVariables dms;
        dms.values[2] = L"in a variant";
        BSTR hemisphere = SysAllocString(L"in a variable for texts");
        dms.arguments[3] = Var::Reference(VT_BSTR, &hemisphere);
        ExpectSteps(p.Get(), {{L"LatitudeDMS", dms.arguments, ""}});
        SysFreeString(hemisphere);
    };
    read();
    const Resources before = Resources::Now();
    for (int i = 0; i < 100; ++i)
        read();
    // The system may take some meanwhile.
    EXPECT_GT(before.heapBlocks + 50, Resources::Now().heapBlocks);
}

TEST_F(PositionTest, DmsNeedsSomethingToWriteTo) {
    const ComPtr<IDispatch> p = NewPosition();
    const DmsVariables good;
    LONG number = 7;  // "N" is none
    for (unsigned place = 0; place < 4; ++place) {
        Vars bad = {5, Var(), Var::Missing(), Var::Of(VT_BYREF | VT_VARIANT),
                    Var::Of(VT_BYREF | VT_R8)};
        if (place == 3) bad.push_back(Var::Reference(VT_I4, &number));
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

// Claims to be a position, but is none of ours: it is refused, not cast.
class FakePosition final : public PlainDispatch {
    bool Offers(REFIID id) const override { return id == IID_IPosition; }
};

TEST_F(PositionTest, OtherProgramsPositionsAreRefused) {
    const ComPtr<FakePosition> fake(new FakePosition);
    ExpectSteps(NewPosition().Get(), {{L"Distance",
                                       {fake.Get(), 1},
                                       "80004002 Parameter not a valid object! (Position Class)"}});
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
