#include "serial/shared_receiver_source.h"

#include <utility>
#include <vector>

namespace kavrel {
namespace {

// A failure without a number of its own must not look like none.
ErrorCode CodeOf(std::int32_t status) {
    const ErrorCode code = static_cast<ErrorCode>(status) & 0xFFFF;
    return code != kNoError ? code : kErrorComPort;
}

}  // namespace

SharedReceiverSource::SharedReceiverSource(std::unique_ptr<SharedReceiver> receiver)
    : receiver_(std::move(receiver)) {}

SharedReceiverSource::~SharedReceiverSource() {
    receiver_->Release();
}

bool SharedReceiverSource::Start() {
    error().Clear();
    lastResult_ = receiver_->Create().status;
    if (lastResult_ < 0) {
        error().Set(CodeOf(lastResult_), Message::RavelinMissing);
        return false;
    }
    lastResult_ = receiver_->Connect(*this).status;
    return true;
}

bool SharedReceiverSource::CallMethod1(std::int32_t argument) {
    return Check(receiver_->CallMethod1(argument));
}

bool SharedReceiverSource::CallMethod2(std::int32_t argument) {
    return Check(receiver_->CallMethod2(argument));
}

bool SharedReceiverSource::CallMethod4() {
    return Check(receiver_->CallMethod4());
}

bool SharedReceiverSource::CallMethod6(std::int32_t argument) {
    return Check(receiver_->CallMethod6(argument));
}

bool SharedReceiverSource::Check(const SharedReceiverResult& result) {
    error().Clear();
    lastResult_ = result.status;
    if (result.IsFailure()) error().Set(CodeOf(result.status), result.errorText);
    return !result.IsFailure();
}

void SharedReceiverSource::OnText(std::string_view text) {
    texts_.Push(MakeRef<ByteBlock>(std::vector<std::uint8_t>(text.begin(), text.end())));
    dataReceived_->Signal();
}

void SharedReceiverSource::OnClosed() {
    sourceClosed_->Signal();
}

}  // namespace kavrel
