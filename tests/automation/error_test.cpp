// How failures reach clients: codes, and error objects with description, source and interface.
#include <gtest/gtest.h>
#include <ole2.h>

#include <string>

#include "KavrelCE_h.h"
#include "automation/support/event_recorder.h"
#include "automation/support/late_call.h"
#include "automation/support/library.h"
#include "automation/support/steps.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

constexpr HRESULT kInvalidArgument = static_cast<HRESULT>(0x80042713);
constexpr HRESULT kIndexOutOfBounds = static_cast<HRESULT>(0x80042714);

using ErrorTest = AutomationTest;

TEST_F(ErrorTest, ParserNamesItselfAsSource) {
    constexpr char kDatum[] = "80042713 Unknown datum! (NmeaParser Class)";
    constexpr char kEventType[] = "80042713 Unknown event type! (NmeaParser Class)";
    constexpr char kNoEvents[] = "80042716 NoEvents must be set! (NmeaParser Class)";
    ExpectSteps(CreateParser().Get(), {{L"=GpsDatum", {0}, kDatum},
                                       {L"=GpsDatum", {29}, kDatum},
                                       {L"=GpsDatum", {28}, ""},
                                       {L"=GpsDatum", {L"text"}, kDatum},
                                       {L"EventInterval", {1000, 9}, kEventType},
                                       {L"EventInterval", {1000, 4}, kEventType},
                                       {L"EventInterval", {1000, 5}, ""},
                                       {L"EventInterval", {1000}, kEventType},
                                       {L"EventInterval", {}, kEventType},
                                       {L"GetGpsFix", {0, 3}, kNoEvents},
                                       {L"GetSatellites", {}, kNoEvents},
                                       {L"GetMovement", {}, kNoEvents},
                                       {L"GetQuality", {}, kNoEvents},
                                       {L"=ChecksumMandatory", {false}, ""}});
}

// An error does not stick to the object, nor does the failing call change it.
TEST_F(ErrorTest, SentenceIsNotRegisteredAndHasNoSource) {
    constexpr char kIndex[] = "80042714 Index out of bounds";
    constexpr char kLength[] = "80042713 Command must be 3 or 5 characters long";
    constexpr char kNull[] = "80042713 Null command not allowed";
    ExpectSteps(MakeSentence(L"$GPXXX,a,b,c").Get(),
                {{L"Fields", {0}, kIndex},
                 {L"Fields", {4}, kIndex},
                 {L"FieldsCount", {}, "I4 3"},
                 {L"Fields", {}, kIndex},
                 {L"Fields", {-255}, "BSTR 'a'"},  // cut to 8 bits
                 {L"=Command", {L"FOUR"}, kLength},
                 {L"=FullCommand", {L""}, kLength},
                 {L"=Command", {Var::Of(VT_BSTR)}, kNull},
                 {L"=FullCommand", {Var::Of(VT_BSTR)}, kNull},
                 {L"Command", {}, "BSTR 'XXX'"}});
}

TEST_F(ErrorTest, CompiledClientsReadTheErrorObject) {
    ComPtr<INmeaParser> parser;
    ComPtr<INmeaSentence> sentence;
    ASSERT_EQ(S_OK, CreateParser().As(&parser));
    ASSERT_EQ(S_OK, MakeSentence(L"$GPXXX,a").As(&sentence));
    EXPECT_EQ(kInvalidArgument, parser->put_GpsDatum(*Var(0).get()));
    std::optional<ErrorReport> error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(L"Unknown datum!", error->description);
    EXPECT_EQ(L"NmeaParser Class", error->source);
    EXPECT_TRUE(error->interfaceId == IID_INmeaParser);
    EXPECT_EQ(S_OK, parser->put_ChecksumMandatory(*Var(false).get()));

    Var result = 5;
    EXPECT_EQ(kIndexOutOfBounds, sentence->Fields(*Var(9).get(), result.get()));
    EXPECT_EQ("BSTR ''", Describe(result)) << "written even by a failing member";
    error = TakeErrorObject();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(std::nullopt, error->source);
    EXPECT_TRUE(error->interfaceId == IID_INmeaSentence);
    EXPECT_EQ(E_POINTER, sentence->get_Sentence(nullptr));
    EXPECT_EQ(E_POINTER, sentence->Fields(*Var(1).get(), nullptr));
}

TEST_F(ErrorTest, ObjectsSayThatTheySupportIt) {
    ComPtr<ISupportErrorInfo> support;
    ASSERT_EQ(S_OK, CreateParser().As(&support));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_INmeaParser));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_INmeaSentence));
    EXPECT_EQ(S_FALSE, support->InterfaceSupportsErrorInfo(IID_IDispatch));
    ASSERT_EQ(S_OK, MakeSentence(L"$GPXXX,a").As(&support));
    EXPECT_EQ(S_OK, support->InterfaceSupportsErrorInfo(IID_INmeaSentence));
}

void RegisterDescription(const std::wstring& text) {
    wchar_t path[45] = L"CLSID\\";
    StringFromGUID2(CLSID_NmeaParser, path + 6, 39);
    EXPECT_EQ(ERROR_SUCCESS,
              RegSetKeyValueW(HKEY_CLASSES_ROOT, path, nullptr, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
}

// It is read into 120 characters, its end included.
TEST_F(ErrorTest, SourceIsWhatIsRegistered) {
    const ComPtr<IDispatch> parser = CreateParser();
    for (const size_t length : {1, 118, 119, 120, 5000}) {
        const std::string text(length, 'x');
        RegisterDescription(std::wstring(length, L'x'));
        EXPECT_EQ("80042713 Unknown datum!" + (length < 120 ? " (" + text + ")" : ""),
                  Outcome(Put(parser.Get(), L"GpsDatum", 0)));
    }
    RegisterDescription(L"NmeaParser Class");
}

}  // namespace

}  // namespace kavrel::tests
