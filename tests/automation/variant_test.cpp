// Reading arguments and writing results: the conversions between variants and plain values.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/library.h"
#include "automation/support/var.h"
#include "base/library_lock.h"
#include "frame/variant_in.h"
#include "frame/variant_out.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace kavrel::tests {

namespace {

class VariantTest : public AutomationTest {
  protected:
    // The conversions are linked into this program, with a library lock of their own.
    static void SetUpTestSuite() { libraryLock.Create(); }
};

Var Single(float value) {
    Var var = Var::Of(VT_R4);
    V_R4(var.get()) = value;
    return var;
}

Var Bool(short value) {
    Var var = Var::Of(VT_BOOL);
    V_BOOL(var.get()) = value;
    return var;
}

// Everything that has no value, whatever is asked for: null in all kinds of wrapping.
Vars Valueless() {
    Vars values = {Var(), Var::Of(VT_NULL), Var::Missing(), Var::Of(VT_DISPATCH),
                   Var::Of(VT_UNKNOWN)};
    for (const int type : {VT_VARIANT, VT_I2, VT_I4, VT_R8, VT_BSTR, VT_DISPATCH, VT_UNKNOWN,
                           VT_UI1, VT_BOOL, VT_ERROR, VT_DATE, VT_DECIMAL}) {
        for (const int wrapping : {int{VT_BYREF}, int{VT_ARRAY}, VT_BYREF | VT_ARRAY})
            values.push_back(Var::Of(static_cast<VARTYPE>(wrapping | type)));
    }
    return values;
}

TEST_F(VariantTest, WhatHasNoValueReadsAsNothing) {
    for (const Var& value : Valueless()) {
        SCOPED_TRACE(Describe(value));
        EXPECT_EQ(0, ToInt16(*value.get()));
        EXPECT_EQ(0, ToInt32(*value.get()));
        EXPECT_EQ(0, ToByte(*value.get()));
        EXPECT_EQ(0.0F, ToSingle(*value.get()));
        EXPECT_EQ(0.0, ToDouble(*value.get()));
        EXPECT_FALSE(ToBool(*value.get()));
        EXPECT_EQ("", TextArgument(*value.get()).view());
        EXPECT_THAT(BytesFromString(*value.get())->bytes(), IsEmpty());
        EXPECT_FALSE(BytesFromArray(*value.get()));
    }
}

// The platform's coercion rounds halves to even, and what does not fit is no number at all. A
// boolean may be another host's, or one of our own: whatever is not 0 is true.
TEST_F(VariantTest, NumbersAreCoerced) {
    struct {
        Var value;
        std::int16_t int16;
        std::int32_t int32;
        std::uint8_t byte;
        double real;
        bool flag;
    } cases[] = {
        {3, 3, 3, 3, 3.0, true},
        {-1, -1, -1, 0, -1.0, true},
        {0, 0, 0, 0, 0.0, false},
        {256, 256, 256, 0, 256.0, true},
        {40000, 0, 40000, 0, 40000.0, true},
        {L"3", 3, 3, 3, 3.0, true},
        {L" 12 ", 12, 12, 12, 12.0, true},
        {L"-5", -5, -5, 0, -5.0, true},
        {L"True", 0, 0, 0, 0.0, true},
        {L"no number", 0, 0, 0, 0.0, false},
        {3.7, 4, 4, 4, 3.7, true},
        {2.5, 2, 2, 2, 2.5, true},
        {1e300, 0, 0, 0, 1e300, true},
        {Single(0.25F), 0, 0, 0, 0.25, true},
        {Bool(VARIANT_TRUE), -1, -1, 255, -1.0, true},
        {Bool(1), 1, 1, 1, 1.0, true},
        {Bool(256), 256, 256, 0, 256.0, true},
        {Bool(0), 0, 0, 0, 0.0, false},
    };
    for (auto& test : cases) {
        const std::string before = Describe(test.value);
        for (const Var& value : {test.value, Var::To(test.value)}) {
            SCOPED_TRACE(before + " as " + Describe(value));
            EXPECT_EQ(test.int16, ToInt16(*value.get()));
            EXPECT_EQ(test.int32, ToInt32(*value.get()));
            EXPECT_EQ(test.byte, ToByte(*value.get()));
            EXPECT_EQ(test.real, ToDouble(*value.get()));
            EXPECT_EQ(test.flag, ToBool(*value.get()));
        }
        EXPECT_EQ(before, Describe(test.value)) << "an argument is left as it is";
    }
    EXPECT_EQ(3.5F, ToSingle(*Var(L"3.5").get()));
    EXPECT_EQ(0.1F, ToSingle(*Var(0.1).get()));
}

TEST_F(VariantTest, ReferencesAreFollowed) {
    short number = 12;
    Var toNumber = Var::Reference(VT_I2, &number);
    Var text = L"7";
    EXPECT_EQ(12, ToInt16(*toNumber.get()));
    EXPECT_EQ(12, ToInt32(*Var::To(toNumber).get())) << "a reference behind a reference";
    EXPECT_EQ("12", TextArgument(*Var::To(toNumber).get()).view());
    for (const Var& toText : {Var::Reference(VT_BSTR, &V_BSTR(text.get())), Var::To(text)}) {
        EXPECT_EQ(7, ToInt16(*toText.get()));
        EXPECT_EQ("7", TextArgument(*toText.get()).view());
        EXPECT_TRUE(IsText(*toText.get()));
    }
    EXPECT_FALSE(IsText(*Var::To(toNumber).get()));

    // No host makes these, but they must not be followed into nowhere.
    Var nowhere = Var::Of(VT_BYREF | VT_I2);
    Var toNowhere = Var::To(nowhere);
    Var further = Var::To(toNowhere);
    EXPECT_EQ(0, ToInt16(*toNowhere.get()));
    EXPECT_EQ(0, ToInt16(*further.get()));
    EXPECT_EQ("", TextArgument(*further.get()).view());
    Var itself = Var::Of(VT_BYREF | VT_VARIANT);
    V_VARIANTREF(itself.get()) = itself.get();
    EXPECT_EQ(0, ToInt16(*itself.get()));
}

TEST_F(VariantTest, TextIsCutToEightBits) {
    using namespace std::string_literals;
    const struct {
        Var value;
        std::string expected;
    } cases[] = {
        {L"\x41\x142", "AB"}, {L"\xE9", "\xE9"}, {L"a\0b"s, "a\0b"s},
        {12, "12"},           {L"", ""},         {Var::Of(VT_BSTR), ""},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(test.expected, TextArgument(*test.value.get()).view());
        EXPECT_EQ(std::vector<std::uint8_t>(test.expected.begin(), test.expected.end()),
                  BytesFromString(*test.value.get())->bytes());
    }
    EXPECT_NE(nullptr, TextArgument(*Var(L"").get()).view().data()) << "empty is not absent";
    EXPECT_EQ(nullptr, TextArgument(*Var::Of(VT_BSTR).get()).view().data());
}

// An array of variants, or of bytes; with two dimensions its elements are nothing.
Var Array(VARTYPE type, const Vars& elements, LONG lower = 0, UINT dimensions = 1) {
    SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(elements.size()), lower}, {2, 0}};
    Var var = Var::Of(static_cast<VARTYPE>(VT_ARRAY | type));
    V_ARRAY(var.get()) = SafeArrayCreate(type, dimensions, bounds);
    for (size_t i = 0; i < elements.size() && dimensions == 1; ++i) {
        auto* const element = const_cast<VARIANT*>(elements[i].get());
        LONG at = lower + static_cast<LONG>(i);
        void* const value = type == VT_VARIANT ? static_cast<void*>(element) : &V_I4(element);
        EXPECT_EQ(S_OK, SafeArrayPutElement(V_ARRAY(var.get()), &at, value));
    }
    return var;
}

TEST_F(VariantTest, ArraysGiveBytes) {
    const Vars bytes = {1, 2, 0, 255};
    Var array = Array(VT_UI1, bytes);
    const Var byReference = Var::Reference(VT_ARRAY | VT_UI1, &V_ARRAY(array.get()));
    for (const Var& value :
         {array, Array(VT_UI1, bytes, 1), Array(VT_UI1, bytes, -3), Array(VT_UI1, bytes, 1000),
          Var::To(array), byReference, Array(VT_VARIANT, {L"1", 2.4, Var::Of(VT_NULL), -1}),
          Array(VT_VARIANT, {257, 258, L"no number", 255}, 7)}) {
        const Ref<ByteBlock> block = BytesFromArray(*value.get());
        ASSERT_TRUE(block) << Describe(value);
        EXPECT_THAT(block->bytes(), ElementsAre(1, 2, 0, 255)) << Describe(value);
    }
    EXPECT_EQ(0U, V_ARRAY(array.get())->cLocks);
    for (const VARTYPE type : {VT_UI1, VT_VARIANT}) {
        const Ref<ByteBlock> empty = BytesFromArray(*Array(type, {}).get());
        ASSERT_TRUE(empty);
        EXPECT_THAT(empty->bytes(), IsEmpty());
    }
}

TEST_F(VariantTest, OtherArraysGiveNoBytes) {
    for (const Var& value : {Var(5), Var(L"text"), Array(VT_I2, {1}), Array(VT_I2, {}),
                             Array(VT_I1, {1}), Array(VT_I4, {1}), Array(VT_BSTR, {}),
                             Array(VT_UI1, {1, 2}, 0, 2), Array(VT_VARIANT, {1, 2}, 0, 2)}) {
        EXPECT_FALSE(BytesFromArray(*value.get())) << Describe(value);
        if ((value.type() & VT_ARRAY) == 0) continue;
        EXPECT_EQ(0U, V_ARRAY(value.get())->cLocks);
    }
}

// Null is no object, and fine; what can be no object is refused.
TEST_F(VariantTest, ObjectsAreAskedForTheirInterface) {
    const ComPtr<EventRecorder> object = EventRecorder::Make();
    IDispatch* held = object.Get();
    IDispatch* nothing = nullptr;
    Var direct(held);
    Var unknown(held);
    V_VT(unknown.get()) = VT_UNKNOWN;
    Var null = Var::Of(VT_NULL);
    const struct {
        Var value;
        HRESULT status;
        IDispatch* found;
    } cases[] = {
        {direct, S_OK, held},
        {unknown, S_OK, held},
        {Var::To(direct), S_OK, held},
        {Var::Reference(VT_DISPATCH, &held), S_OK, held},
        {Var::Reference(VT_UNKNOWN, &held), S_OK, held},
        {null, S_OK, nullptr},
        {Var::To(null), S_OK, nullptr},
        {Var::Of(VT_DISPATCH), S_OK, nullptr},
        {Var::Of(VT_UNKNOWN), S_OK, nullptr},
        {Var::Reference(VT_DISPATCH, &nothing), S_OK, nullptr},
        {Var::Reference(VT_UNKNOWN, nullptr), S_OK, nullptr},
        {Var(), E_NOINTERFACE, nullptr},
        {5, E_NOINTERFACE, nullptr},
        {L"text", E_NOINTERFACE, nullptr},
        {Var::Missing(), E_NOINTERFACE, nullptr},
        {Var::Of(VT_ARRAY | VT_DISPATCH), E_NOINTERFACE, nullptr},
        {Var::Reference(VT_VARIANT, nullptr), E_NOINTERFACE, nullptr},
    };
    for (const auto& test : cases) {
        ComPtr<IDispatch> found;
        EXPECT_EQ(test.status, ToObject(*test.value.get(), IID_PPV_ARGS(&found)))
            << Describe(test.value);
        EXPECT_EQ(test.found, found.Get()) << Describe(test.value);
    }
    void* none = &none;
    EXPECT_EQ(E_NOINTERFACE, ToObject(*direct.get(), IID_IStream, &none));
    EXPECT_EQ(nullptr, none);
}

// What an output conversion makes of a variant that already holds something.
template <typename Argument>
std::string Written(Argument argument) {
    const ComPtr<EventRecorder> before = EventRecorder::Make();
    Var out(before.Get());
    SetVariant(*out.get(), std::move(argument));
    EXPECT_EQ(1U, before->references()) << "what it held is let go";
    return Describe(out);
}

TEST_F(VariantTest, ResultsHaveTheirOwnTypes) {
    EXPECT_EQ("UI1 200", Written(std::uint8_t{200}));
    EXPECT_EQ("I2 -3", Written(std::int16_t{-3}));
    EXPECT_EQ("I4 70000", Written(std::int32_t{70000}));
    EXPECT_EQ("R4 0.5", Written(0.5F));
    EXPECT_EQ("R8 0.1", Written(0.1));
    EXPECT_EQ("BOOL 1", Written(true)) << "not the all-bits-set true";
    EXPECT_EQ("BOOL 0", Written(false));
    EXPECT_EQ("BSTR ''", Written(std::string_view("")));
    EXPECT_EQ("BSTR 'a\xC3\xA9'", Written(std::string_view("a\xE9"))) << "widened, not decoded";
    EXPECT_EQ("DISPATCH null", Written(ComRef<IDispatch>()));
    const ComPtr<EventRecorder> object = EventRecorder::Make();
    EXPECT_EQ("DISPATCH object", Written(ComRef<IDispatch>::Share(object.Get())));
    EXPECT_EQ(1U, object->references()) << "its reference is handed over";
}

TEST_F(VariantTest, BytesBecomeText) {
    const std::uint8_t bytes[] = {0x41, 0, 0xFF};
    Var out = 5;
    SetVariantToText(*out.get(), bytes);
    EXPECT_EQ(std::wstring(L"A\0\xFF", 3), out.text());
    SetVariantToText(*out.get(), {});
    EXPECT_EQ("BSTR null", Describe(out));
}

TEST_F(VariantTest, BytesBecomeArraysAndComeBack) {
    using Bytes = std::vector<std::uint8_t>;
    for (const Bytes& content : {Bytes{0, 1, 128, 255}, Bytes()}) {
        Var made[] = {L"something to be freed", L"something to be freed"};
        SetVariantToByteArray(*made[0].get(), content);
        SetVariantToVariantArray(*made[1].get(), content);
        EXPECT_EQ(VT_ARRAY | VT_UI1, made[0].type());
        EXPECT_EQ(VT_ARRAY | VT_VARIANT, made[1].type());
        for (const Var& array : made) {
            ASSERT_TRUE(BytesFromArray(*array.get()));
            EXPECT_EQ(content, BytesFromArray(*array.get())->bytes());
            EXPECT_EQ(0, V_ARRAY(array.get())->rgsabound[0].lLbound);
            EXPECT_EQ(0U, V_ARRAY(array.get())->cLocks);
        }
        if (content.empty()) continue;
        EXPECT_EQ("UI1 128", Describe(static_cast<VARIANT*>(V_ARRAY(made[1].get())->pvData)[2]));
    }
}

}  // namespace

}  // namespace kavrel::tests
