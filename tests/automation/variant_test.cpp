// Reading arguments and writing results: the conversions between variants and plain values.
#include <gtest/gtest.h>
#include <ole2.h>

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "automation/support/event_recorder.h"
#include "automation/support/library.h"
#include "automation/support/var.h"
#include "base/library_lock.h"
#include "frame/variant_in.h"
#include "frame/variant_out.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

class VariantTest : public AutomationTest {
  protected:
    // The conversions are linked into this program, with a library lock of their own.
    static void SetUpTestSuite() { libraryLock.Create(); }
};

Var Null() {
    return Var::Of(VT_NULL);
}

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

// Everything that has no value, whatever is asked for.
Vars Valueless() {
    Vars values = {Var(),       Null(), Var::Missing(), Var::Of(VT_DISPATCH), Var::Of(VT_UNKNOWN),
                   L"no number"};
    for (const int type : {VT_VARIANT, VT_I2, VT_I4, VT_R8, VT_BSTR, VT_DISPATCH, VT_UNKNOWN,
                           VT_UI1, VT_BOOL, VT_ERROR, VT_DATE, VT_DECIMAL}) {
        values.push_back(Var::Of(static_cast<VARTYPE>(VT_BYREF | type)));
        values.push_back(Var::Of(static_cast<VARTYPE>(VT_ARRAY | type)));
        values.push_back(Var::Of(static_cast<VARTYPE>(VT_BYREF | VT_ARRAY | type)));
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
        if (value.type() == VT_BSTR) continue;
        EXPECT_EQ("", TextArgument(*value.get()).view());
        EXPECT_EQ(0U, BytesFromString(*value.get())->bytes().size());
        EXPECT_FALSE(BytesFromArray(*value.get()));
    }
}

struct NumberCase {
    Var value;
    std::int16_t int16;
    std::int32_t int32;
    std::uint8_t byte;
    double real;
    bool flag;
};

// The platform's coercion rounds halves to even, and what does not fit is no number at all.
TEST_F(VariantTest, NumbersAreCoerced) {
    const NumberCase cases[] = {
        {3, 3, 3, 3, 3.0, true},
        {-1, -1, -1, 0, -1.0, true},
        {0, 0, 0, 0, 0.0, false},
        {40000, 0, 40000, 0, 40000.0, true},
        {L"3", 3, 3, 3, 3.0, true},
        {L" 12 ", 12, 12, 12, 12.0, true},
        {L"-5", -5, -5, 0, -5.0, true},
        {3.7, 4, 4, 4, 3.7, true},
        {2.5, 2, 2, 2, 2.5, true},
        {1e300, 0, 0, 0, 1e300, true},
        {Single(0.25F), 0, 0, 0, 0.25, true},
        {Bool(VARIANT_TRUE), -1, -1, 255, -1.0, true},
        {Bool(1), 1, 1, 1, 1.0, true},
    };
    for (const NumberCase& test : cases) {
        SCOPED_TRACE(Describe(test.value));
        const VARIANT& value = *test.value.get();
        EXPECT_EQ(test.int16, ToInt16(value));
        EXPECT_EQ(test.int32, ToInt32(value));
        EXPECT_EQ(test.byte, ToByte(value));
        EXPECT_EQ(test.real, ToDouble(value));
        EXPECT_EQ(test.flag, ToBool(value));
    }
    EXPECT_EQ(3.5F, ToSingle(*Var(L"3.5").get()));
    EXPECT_EQ(0.1F, ToSingle(*Var(0.1).get()));
}

TEST_F(VariantTest, FlagIsTrueWhenNotZero) {
    EXPECT_TRUE(ToBool(*Bool(1).get())) << "a boolean of another host, or of our own";
    EXPECT_TRUE(ToBool(*Bool(256).get())) << "the low byte is not all of it";
    EXPECT_FALSE(ToBool(*Bool(0).get()));
    EXPECT_TRUE(ToBool(*Var(L"True").get()));
    EXPECT_TRUE(ToBool(*Var(256).get()));
}

TEST_F(VariantTest, ReferencesAreFollowed) {
    Var text = L"3";
    EXPECT_EQ(3, ToInt16(*Var::To(text).get()));
    Var number = 70000;
    EXPECT_EQ(70000, ToInt32(*Var::To(number).get()));
    EXPECT_EQ("70000", TextArgument(*Var::To(number).get()).view());

    short direct = 12;
    Var reference = Var::Of(VT_BYREF | VT_I2);
    V_I2REF(reference.get()) = &direct;
    EXPECT_EQ(12, ToInt16(*reference.get()));
    EXPECT_EQ(12, ToInt32(*Var::To(reference).get())) << "a reference behind a reference";

    BSTR characters = SysAllocString(L"7");
    Var textReference = Var::Of(VT_BYREF | VT_BSTR);
    V_BSTRREF(textReference.get()) = &characters;
    EXPECT_EQ(7, ToInt16(*textReference.get()));
    EXPECT_EQ("7", TextArgument(*textReference.get()).view());
    SysFreeString(characters);

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

TEST_F(VariantTest, ArgumentsAreLeftAsTheyAre) {
    Var text = L"3";
    ToInt16(*text.get());
    EXPECT_EQ("BSTR '3'", Describe(text));
    Var reference = Var::To(text);
    ToDouble(*reference.get());
    TextArgument(*reference.get());
    EXPECT_EQ("BSTR '3'", Describe(text));
}

TEST_F(VariantTest, TextIsCutToEightBits) {
    EXPECT_EQ("AB", TextArgument(*Var(L"\x41\x142").get()).view());
    EXPECT_EQ("\xE9", TextArgument(*Var(L"\xE9").get()).view());
    using namespace std::string_literals;
    EXPECT_EQ("a\0b"s, TextArgument(*Var(L"a\0b"s).get()).view());
    EXPECT_EQ("5", TextArgument(*Var(5).get()).view());
    EXPECT_NE(nullptr, TextArgument(*Var(L"").get()).view().data()) << "empty is not absent";
    EXPECT_EQ(nullptr, TextArgument(*Var::Of(VT_BSTR).get()).view().data());
}

TEST_F(VariantTest, TextOfSentencesKeepsAllBits) {
    const WideTextArgument wide(*Var(L"\x41\x142").get());
    EXPECT_EQ("A\x1A", wide.view().narrow);
    EXPECT_EQ(u"A\x142", wide.view().wide);
    const WideTextArgument narrow(*Var(L"\xE9").get());
    EXPECT_EQ("\xE9", narrow.view().narrow);
    EXPECT_TRUE(narrow.view().wide.empty());
    EXPECT_NE(nullptr, WideTextArgument(*Var(L"").get()).view().narrow.data());
    EXPECT_EQ(nullptr, WideTextArgument(*Var::Of(VT_BSTR).get()).view().narrow.data());
    Var out;
    SetVariant(*out.get(), wide.view());
    EXPECT_EQ(L"A\x142", out.text());
    SetVariant(*out.get(), narrow.view());
    EXPECT_EQ(L"\xE9", out.text());
}

TEST_F(VariantTest, StringsGiveBytes) {
    EXPECT_EQ((std::vector<std::uint8_t>{0x41, 0x42}),
              BytesFromString(*Var(L"\x41\x142").get())->bytes());
    EXPECT_EQ((std::vector<std::uint8_t>{'1', '2'}), BytesFromString(*Var(12).get())->bytes());
    EXPECT_TRUE(BytesFromString(*Var::Of(VT_BSTR).get())->bytes().empty());
    EXPECT_TRUE(BytesFromString(*Var(L"").get())->bytes().empty());
}

// Makes an array; what is in it is up to the test.
Var MakeArray(VARTYPE element, std::initializer_list<SAFEARRAYBOUND> bounds) {
    std::vector<SAFEARRAYBOUND> copied(bounds);
    Var var = Var::Of(static_cast<VARTYPE>(VT_ARRAY | element));
    V_ARRAY(var.get()) = SafeArrayCreate(element, static_cast<UINT>(copied.size()), copied.data());
    return var;
}

Var ByteArray(LONG lower, const std::vector<std::uint8_t>& bytes) {
    Var var = MakeArray(VT_UI1, {{static_cast<ULONG>(bytes.size()), lower}});
    void* data = nullptr;
    if (!bytes.empty() && SUCCEEDED(SafeArrayAccessData(V_ARRAY(var.get()), &data))) {
        std::memcpy(data, bytes.data(), bytes.size());
        SafeArrayUnaccessData(V_ARRAY(var.get()));
    }
    return var;
}

Var VariantArray(const Vars& elements) {
    Var var = MakeArray(VT_VARIANT, {{static_cast<ULONG>(elements.size()), 0}});
    for (LONG i = 0; i < static_cast<LONG>(elements.size()); ++i) {
        SafeArrayPutElement(V_ARRAY(var.get()), &i,
                            const_cast<VARIANT*>(elements[static_cast<size_t>(i)].get()));
    }
    return var;
}

TEST_F(VariantTest, ByteArraysGiveBytes) {
    const std::vector<std::uint8_t> bytes = {1, 2, 0, 255};
    for (const LONG lower : {0, 1, -3, 1000}) {
        const Ref<ByteBlock> block = BytesFromArray(*ByteArray(lower, bytes).get());
        ASSERT_TRUE(block) << lower;
        EXPECT_EQ(bytes, block->bytes()) << lower;
    }
    const Ref<ByteBlock> empty = BytesFromArray(*ByteArray(0, {}).get());
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->bytes().empty());

    Var array = ByteArray(0, bytes);
    const Ref<ByteBlock> byVariant = BytesFromArray(*Var::To(array).get());
    ASSERT_TRUE(byVariant);
    EXPECT_EQ(bytes, byVariant->bytes());
    Var direct = Var::Of(VT_BYREF | VT_ARRAY | VT_UI1);
    V_ARRAYREF(direct.get()) = &V_ARRAY(array.get());
    const Ref<ByteBlock> byReference = BytesFromArray(*direct.get());
    ASSERT_TRUE(byReference);
    EXPECT_EQ(bytes, byReference->bytes());
}

TEST_F(VariantTest, VariantArraysGiveBytes) {
    const Ref<ByteBlock> cut = BytesFromArray(*VariantArray({1, 2, 3, 256, 257}).get());
    ASSERT_TRUE(cut);
    EXPECT_EQ((std::vector<std::uint8_t>{1, 2, 3, 0, 1}), cut->bytes());

    const Ref<ByteBlock> mixed =
        BytesFromArray(*VariantArray({L"65", 3.7, -1, Null(), L"no number", Var()}).get());
    ASSERT_TRUE(mixed);
    EXPECT_EQ((std::vector<std::uint8_t>{65, 4, 255, 0, 0, 0}), mixed->bytes());
}

TEST_F(VariantTest, OtherArraysGiveNoBytes) {
    const Var unsuitable[] = {
        5,
        L"text",
        MakeArray(VT_I2, {{3, 0}}),
        MakeArray(VT_I2, {{0, 0}}),
        MakeArray(VT_I1, {{3, 0}}),
        MakeArray(VT_BSTR, {{1, 0}}),
        MakeArray(VT_UI1, {{2, 0}, {2, 0}}),
        MakeArray(VT_VARIANT, {{2, 0}, {2, 0}}),
    };
    for (const Var& value : unsuitable) {
        EXPECT_FALSE(BytesFromArray(*value.get())) << Describe(value);
    }
}

TEST_F(VariantTest, ArraysStayUnlocked) {
    const Var array = ByteArray(0, {1, 2, 3});
    BytesFromArray(*array.get());
    EXPECT_EQ(0U, V_ARRAY(array.get())->cLocks);
    const Var other = MakeArray(VT_I4, {{3, 0}});
    BytesFromArray(*other.get());
    EXPECT_EQ(0U, V_ARRAY(other.get())->cLocks);
}

TEST_F(VariantTest, ObjectsAreAskedForTheirInterface) {
    const ComPtr<EventRecorder> object = EventRecorder::Make();
    Var direct(object.Get());
    Var unknown = Var::Of(VT_UNKNOWN);
    V_UNKNOWN(unknown.get()) = object.Get();
    object->AddRef();
    IDispatch* held = object.Get();
    Var byReference = Var::Of(VT_BYREF | VT_DISPATCH);
    V_DISPATCHREF(byReference.get()) = &held;
    for (const Var& value : {direct, unknown, Var::To(direct), byReference}) {
        ComPtr<IDispatch> found;
        EXPECT_EQ(S_OK, ToObject(*value.get(), IID_PPV_ARGS(&found))) << Describe(value);
        EXPECT_EQ(object.Get(), found.Get());
        void* none = &none;
        EXPECT_EQ(E_NOINTERFACE, ToObject(*value.get(), IID_IStream, &none));
        EXPECT_EQ(nullptr, none);
    }
}

TEST_F(VariantTest, NoObjectIsSuccess) {
    IDispatch* nothing = nullptr;
    Var byReference = Var::Of(VT_BYREF | VT_DISPATCH);
    V_DISPATCHREF(byReference.get()) = &nothing;
    Var null = Null();
    for (const Var& value : {null, Var::Of(VT_DISPATCH), Var::Of(VT_UNKNOWN), byReference,
                             Var::Of(VT_BYREF | VT_UNKNOWN), Var::To(null)}) {
        void* found = &found;
        EXPECT_EQ(S_OK, ToObject(*value.get(), IID_IDispatch, &found)) << Describe(value);
        EXPECT_EQ(nullptr, found);
    }
    for (const Var& value : {Var(), Var(5), Var(L"text"), Var::Missing(),
                             Var::Of(VT_ARRAY | VT_DISPATCH), Var::Of(VT_BYREF | VT_VARIANT)}) {
        void* found = &found;
        EXPECT_EQ(E_NOINTERFACE, ToObject(*value.get(), IID_IDispatch, &found)) << Describe(value);
        EXPECT_EQ(nullptr, found);
    }
}

// Runs an output conversion over a variant that already holds something, and tells the outcome.
template <typename... Arguments>
std::string Written(Arguments... arguments) {
    Var out = L"something to be freed";
    SetVariant(*out.get(), arguments...);
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
}

TEST_F(VariantTest, ObjectResultsHandTheirReferenceOver) {
    const ComPtr<EventRecorder> object = EventRecorder::Make();
    const ULONG before = object->references();
    {
        Var out;
        SetVariant(*out.get(), ComRef<IDispatch>::Share(object.Get()));
        EXPECT_EQ(object.Get(), out.object());
        EXPECT_EQ(before + 1, object->references());
    }
    EXPECT_EQ(before, object->references());
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
    const std::vector<std::uint8_t> bytes = {0, 1, 128, 255};
    for (const auto& content : {bytes, std::vector<std::uint8_t>()}) {
        Var array = L"something to be freed";
        SetVariantToByteArray(*array.get(), content);
        ASSERT_EQ(VT_ARRAY | VT_UI1, array.type());
        Var variants;
        SetVariantToVariantArray(*variants.get(), content);
        ASSERT_EQ(VT_ARRAY | VT_VARIANT, variants.type());
        for (const Var* made : {&array, &variants}) {
            LONG lower = -1;
            LONG upper = -1;
            SafeArrayGetLBound(V_ARRAY(made->get()), 1, &lower);
            SafeArrayGetUBound(V_ARRAY(made->get()), 1, &upper);
            EXPECT_EQ(0, lower);
            EXPECT_EQ(static_cast<LONG>(content.size()) - 1, upper);
            EXPECT_EQ(0U, V_ARRAY(made->get())->cLocks);
            const Ref<ByteBlock> back = BytesFromArray(*made->get());
            ASSERT_TRUE(back);
            EXPECT_EQ(content, back->bytes());
        }
    }
    Var variants;
    SetVariantToVariantArray(*variants.get(), bytes);
    LONG second = 2;
    Var element;
    SafeArrayGetElement(V_ARRAY(variants.get()), &second, element.Receive());
    EXPECT_EQ("UI1 128", Describe(element));
}

// Other compilers' hosts hand these over by value.
static_assert(sizeof(VARIANT) == (sizeof(void*) == 8 ? 24 : 16));
static_assert(sizeof(VARIANT_BOOL) == 2 && sizeof(VARTYPE) == 2 && sizeof(DATE) == 8);

}  // namespace

}  // namespace kavrel::tests
