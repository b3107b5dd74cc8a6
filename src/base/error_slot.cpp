#include "base/error_slot.h"

#include <utility>

namespace kavrel {

std::string_view ErrorSlot::text() const {
    if (code_ == kNoError) return {};
    if (ownText_ != nullptr) return *ownText_;
    return MessageText(message_);
}

void ErrorSlot::Set(ErrorCode code, Message message) {
    code_ = code;
    message_ = message;
    ownText_.reset();
}

void ErrorSlot::Set(ErrorCode code, std::string_view text) {
    // Copied before the old text, which it may be, goes.
    std::unique_ptr<const std::string> copy;
    if (code != kNoError && !text.empty()) copy = std::make_unique<const std::string>(text);
    Set(code, Message::UnknownError);
    ownText_ = std::move(copy);
}

void ErrorSlot::CopyFrom(const ErrorSlot* source) {
    if (source == nullptr) {
        Set(kErrorNullCopySource, Message::NullCopySource);
    } else if (source->ownText_ != nullptr) {
        Set(source->code_, source->text());
    } else {
        Set(source->code_, source->message_);
    }
}

}  // namespace kavrel
