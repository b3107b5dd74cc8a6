#include "automation/support/event_recorder.h"

#include <olectl.h>

#include "KavrelCE_h.h"
#include "automation/support/late_call.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

ComPtr<EventRecorder> EventRecorder::Make() {
    return ComPtr<EventRecorder>(new EventRecorder);
}

std::vector<std::wstring> EventRecorder::texts() const {
    std::vector<std::wstring> texts;
    for (const RecordedEvent& event : events_) {
        if (event.id == kGeneric) texts.push_back(event.text);
    }
    return texts;
}

bool EventRecorder::Offers(REFIID id) const {
    return (offersDispatch_ && id == IID_IDispatch) ||
           (offersEvents_ && id == DIID__INmeaParserEvents);
}

STDMETHODIMP EventRecorder::Invoke(DISPID id, REFIID, LCID, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT*, EXCEPINFO*, UINT*) {
    EXPECT_EQ(DISPATCH_METHOD, kinds);
    EXPECT_EQ(0U, parameters->cNamedArgs);
    RecordedEvent event{id, {}, {}};
    for (UINT i = parameters->cArgs; i-- > 0;) {
        Var argument;
        VariantCopy(argument.get(), &parameters->rgvarg[i]);
        event.arguments.push_back(std::move(argument));
    }
    if (id == kGeneric && event.arguments.size() == 1 && event.arguments[0].object() != nullptr) {
        event.text = Get(event.arguments[0].object(), L"Sentence").value.text();
    }
    events_.push_back(event);
    // The reaction may drop the last reference to this sink, or connect another reaction.
    const ComPtr<EventRecorder> keepAlive(this);
    const Reaction reaction = reaction_;
    return reaction ? reaction(event) : S_OK;
}

ComPtr<IConnectionPoint> EventsOf(IUnknown* parser) {
    ComPtr<IConnectionPointContainer> container;
    ComPtr<IConnectionPoint> point;
    if (SUCCEEDED(parser->QueryInterface(IID_PPV_ARGS(&container)))) {
        container->FindConnectionPoint(DIID__INmeaParserEvents, &point);
    }
    return point;
}

Listener::Listener(IDispatch* parser) : recorder_(EventRecorder::Make()), point_(EventsOf(parser)) {
    if (!point_) {
        ADD_FAILURE() << "the parser has no events";
        return;
    }
    EXPECT_EQ(S_OK, point_->Advise(recorder_.Get(), &cookie_));
}

Listener::~Listener() {
    Disconnect();
}

void Listener::Disconnect() {
    if (point_ && cookie_ != 0) point_->Unadvise(cookie_);
    cookie_ = 0;
    point_.Reset();
}

void ParserTest::SetUp() {
    AutomationTest::SetUp();
    parser_ = CreateParser();
    ASSERT_TRUE(parser_);
}

void ParserTest::TearDown() {
    parser_.Reset();
    AutomationTest::TearDown();
}

void ParserTest::Parse(const std::wstring& text) {
    EXPECT_EQ(S_OK, Call(parser_.Get(), L"Parse", {text}).status);
}

ComPtr<IDispatch> MakeSentence(const std::wstring& text) {
    const ComPtr<IDispatch> parser = CreateDirectly(CLSID_NmeaParser);
    if (!parser) return nullptr;
    const Listener listener(parser.Get());
    Call(parser.Get(), L"Parse", {text + L"\r\n"});
    if (listener->events().empty()) return nullptr;
    return listener->events().back().arguments[0].object();
}

}  // namespace kavrel::tests
