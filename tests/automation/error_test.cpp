// How failures reach clients: codes, and error objects with description, source and interface.
#include <gtest/gtest.h>
#include <ole2.h>

#include <string>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr HRESULT kInvalidArgument = static_cast<HRESULT>(0x80042713);
constexpr HRESULT kIndexOutOfBounds = static_cast<HRESULT>(0x80042714);
constexpr HRESULT kWrongState = static_cast<HRESULT>(0x80042716);

using ErrorTest = AutomationTest;

// A call that fails, and what the client learns of it.
struct FailureCase {
    const wchar_t* member;
    WORD kind;
    Vars arguments;
    HRESULT failure;
    const wchar_t* description;
};

void ExpectFailure(const FailureCase& expected, const CallResult& call) {
    EXPECT_EQ(DISP_E_EXCEPTION, call.status);
    EXPECT_EQ(expected.failure, call.failure);
    ASSERT_TRUE(call.error.has_value());
    EXPECT_EQ(expected.description, call.error->description);
}

CallResult RunCase(IDispatch* object, const FailureCase& test) {
    Arguments arguments{test.arguments, {}};
    if (test.kind == DISPATCH_PROPERTYPUT) arguments.names = {DISPID_PROPERTYPUT};
    return InvokeById(object, IdOf(object, test.member), test.kind, arguments);
}

TEST_F(ErrorTest, ParserNamesItselfAsSource) {
    const FailureCase cases[] = {
        {L"GpsDatum", DISPATCH_PROPERTYPUT, {0}, kInvalidArgument, L"Unknown datum!"},
        {L"GpsDatum", DISPATCH_PROPERTYPUT, {29}, kInvalidArgument, L"Unknown datum!"},
        {L"GpsDatum", DISPATCH_PROPERTYPUT, {-1}, kInvalidArgument, L"Unknown datum!"},
        {L"GpsDatum", DISPATCH_PROPERTYPUT, {L"text"}, kInvalidArgument, L"Unknown datum!"},
        {L"EventInterval", DISPATCH_METHOD, {1000, 9}, kInvalidArgument, L"Unknown event type!"},
        {L"EventInterval", DISPATCH_METHOD, {1000, 1}, kInvalidArgument, L"Unknown event type!"},
        {L"EventInterval", DISPATCH_METHOD, {1000, 4}, kInvalidArgument, L"Unknown event type!"},
        {L"EventInterval",
         DISPATCH_METHOD,
         {1000, -2147483647},
         kInvalidArgument,
         L"Unknown event type!"},
        {L"EventInterval", DISPATCH_METHOD, {1000}, kInvalidArgument, L"Unknown event type!"},
        {L"EventInterval", DISPATCH_METHOD, {}, kInvalidArgument, L"Unknown event type!"},
        {L"GetGpsFix", DISPATCH_METHOD, {0, 3}, kWrongState, L"NoEvents must be set!"},
        {L"GetSatellites", DISPATCH_METHOD, {}, kWrongState, L"NoEvents must be set!"},
        {L"GetMovement", DISPATCH_METHOD, {}, kWrongState, L"NoEvents must be set!"},
        {L"GetQuality", DISPATCH_METHOD, {}, kWrongState, L"NoEvents must be set!"},
    };
    const ComPtr<IDispatch> parser = CreateParser();
    for (const FailureCase& test : cases) {
        const CallResult call = RunCase(parser.Get(), test);
        ExpectFailure(test, call);
        ASSERT_TRUE(call.error.has_value());
        EXPECT_EQ(L"NmeaParser Class", call.error->source);
    }
}

TEST_F(ErrorTest, SentenceIsNotRegisteredAndHasNoSource) {
    const FailureCase cases[] = {
        {L"Fields", DISPATCH_METHOD, {0}, kIndexOutOfBounds, L"Index out of bounds"},
        {L"Fields", DISPATCH_METHOD, {4}, kIndexOutOfBounds, L"Index out of bounds"},
        {L"Fields", DISPATCH_METHOD, {200}, kIndexOutOfBounds, L"Index out of bounds"},
        {L"Fields", DISPATCH_METHOD, {-255}, S_OK, L""},
        {L"Fields", DISPATCH_METHOD, {}, kIndexOutOfBounds, L"Index out of bounds"},
        {L"Command",
         DISPATCH_PROPERTYPUT,
         {L"FOUR"},
         kInvalidArgument,
         L"Command must be 3 or 5 characters long"},
        {L"FullCommand",
         DISPATCH_PROPERTYPUT,
         {L""},
         kInvalidArgument,
         L"Command must be 3 or 5 characters long"},
        {L"Command",
         DISPATCH_PROPERTYPUT,
         {Var::Of(VT_BSTR)},
         kInvalidArgument,
         L"Null command not allowed"},
        {L"FullCommand",
         DISPATCH_PROPERTYPUT,
         {Var::Of(VT_BSTR)},
         kInvalidArgument,
         L"Null command not allowed"},
    };
    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX,a,b,c");
    for (const FailureCase& test : cases) {
        const CallResult call = RunCase(sentence.Get(), test);
        if (test.failure == S_OK) {
            EXPECT_EQ(S_OK, call.status) << "cut to 8 bits, -255 is 1";
            continue;
        }
        ExpectFailure(test, call);
        ASSERT_TRUE(call.error.has_value());
        EXPECT_EQ(std::nullopt, call.error->source);
    }
    EXPECT_EQ(L"XXX", Get(sentence.Get(), L"Command").value.text()) << "nothing has changed";
}

TEST_F(ErrorTest, ResultIsWrittenEvenByAFailingMember) {
    const ComPtr<IDispatch> object = MakeSentence(L"$GPXXX,a");
    ComPtr<INmeaSentence> sentence;
    ASSERT_EQ(S_OK, object.As(&sentence));
    Var result = 5;
    EXPECT_EQ(kIndexOutOfBounds, sentence->Fields(*Var(9).get(), result.get()));
    EXPECT_EQ("BSTR ''", Describe(result));
    TakeErrorObject();
}

TEST_F(ErrorTest, CompiledClientsReadTheErrorObject) {
    const ComPtr<IDispatch> object = CreateParser();
    ComPtr<INmeaParser> parser;
    ASSERT_EQ(S_OK, object.As(&parser));
    EXPECT_EQ(kInvalidArgument, parser->put_GpsDatum(*Var(0).get()));
    std::optional<ErrorReport> error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(L"Unknown datum!", error->description);
    EXPECT_EQ(L"NmeaParser Class", error->source);
    EXPECT_TRUE(error->interfaceId == IID_INmeaParser);

    const ComPtr<IDispatch> other = MakeSentence(L"$GPXXX,a");
    ComPtr<INmeaSentence> sentence;
    ASSERT_EQ(S_OK, other.As(&sentence));
    EXPECT_EQ(kInvalidArgument, sentence->put_Command(*Var(L"FOUR").get()));
    error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(std::nullopt, error->source);
    EXPECT_TRUE(error->interfaceId == IID_INmeaSentence);
}

TEST_F(ErrorTest, ErrorDoesNotStickToTheObject) {
    const ComPtr<IDispatch> object = CreateParser();
    ComPtr<INmeaParser> parser;
    ASSERT_EQ(S_OK, object.As(&parser));
    EXPECT_EQ(kInvalidArgument, parser->put_GpsDatum(*Var(0).get()));
    EXPECT_EQ(S_OK, parser->put_GpsDatum(*Var(28).get()));
    EXPECT_EQ(S_OK, parser->put_ChecksumMandatory(*Var(false).get()));

    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX,a");
    EXPECT_EQ(kIndexOutOfBounds, Call(sentence.Get(), L"Fields", {9}).failure);
    EXPECT_EQ(S_OK, Get(sentence.Get(), L"FieldsCount").status);
    EXPECT_EQ(S_OK, Get(sentence.Get(), L"Command").status);
    EXPECT_EQ(kIndexOutOfBounds, Call(sentence.Get(), L"Fields", {9}).failure);
    EXPECT_EQ(S_OK, Get(sentence.Get(), L"FullCommand").status);
    TakeErrorObject();
}

TEST_F(ErrorTest, NullResultPointersAreRefused) {
    const ComPtr<IDispatch> object = MakeSentence(L"$GPXXX,a");
    ComPtr<INmeaSentence> sentence;
    ASSERT_EQ(S_OK, object.As(&sentence));
    EXPECT_EQ(E_POINTER, sentence->get_Sentence(nullptr));
    EXPECT_EQ(E_POINTER, sentence->Fields(*Var(1).get(), nullptr));
    EXPECT_EQ(E_POINTER, sentence->get_FieldsCount(nullptr));
    EXPECT_EQ(E_POINTER, sentence->get_Command(nullptr));
    EXPECT_EQ(E_POINTER, sentence->get_FullCommand(nullptr));
}

TEST_F(ErrorTest, ObjectsSayThatTheySupportIt) {
    const ComPtr<IDispatch> parser = CreateParser();
    const ComPtr<IDispatch> sentence = MakeSentence(L"$GPXXX,a");
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(S_OK, parser.As(&support));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_INmeaParser));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_INmeaSentence));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
    ASSERT_EQ(S_OK, sentence.As(&support));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_INmeaSentence));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_INmeaParser));
}

// Changes a class's registered description for a scope.
class RegisteredDescription {
  public:
    explicit RegisteredDescription(const std::wstring& text) {
        wchar_t id[39];
        StringFromGUID2(CLSID_NmeaParser, id, 39);
        path_ = std::wstring(L"CLSID\\") + id;
        EXPECT_EQ(ERROR_SUCCESS, Set(text));
    }
    ~RegisteredDescription() { Set(L"NmeaParser Class"); }
    RegisteredDescription(const RegisteredDescription&) = delete;
    RegisteredDescription& operator=(const RegisteredDescription&) = delete;

  private:
    LSTATUS Set(const std::wstring& text) {
        return RegSetKeyValueW(HKEY_CLASSES_ROOT, path_.c_str(), nullptr, REG_SZ, text.c_str(),
                               static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }

    std::wstring path_;
};

TEST_F(ErrorTest, SourceIsWhatIsRegistered) {
    const ComPtr<IDispatch> parser = CreateParser();
    const RegisteredDescription changed(L"Something else");
    const CallResult call = Put(parser.Get(), L"GpsDatum", 0);
    ASSERT_TRUE(call.error.has_value());
    EXPECT_EQ(L"Something else", call.error->source);
}

// The source is read into 120 characters, its end included.
TEST_F(ErrorTest, SourceHasALargestLength) {
    const ComPtr<IDispatch> parser = CreateParser();
    for (const size_t length : {size_t{118}, size_t{119}, size_t{120}, size_t{5000}}) {
        const std::wstring text(length, L'x');
        const RegisteredDescription changed(text);
        const CallResult call = Put(parser.Get(), L"GpsDatum", 0);
        ASSERT_TRUE(call.error.has_value());
        EXPECT_EQ(L"Unknown datum!", call.error->description);
        const auto expected = length < 120 ? std::optional(text) : std::nullopt;
        EXPECT_EQ(expected, call.error->source) << length;
    }
}

// Members whose engine is still to come say so.
}  // namespace

}  // namespace kavrel::tests
