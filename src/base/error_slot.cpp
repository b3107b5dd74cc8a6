#include "base/error_slot.h"

namespace kavrel {

void ErrorSlot::Set(ErrorCode code, std::string_view text) {
    code_ = code;
    if (code == kNoError) {
        std::string().swap(text_);  // gives the memory back, which clear() would not
        return;
    }
    text_ = text.empty() ? MessageText(Message::UnknownError) : text;
}

void ErrorSlot::CopyFrom(const ErrorSlot* source) {
    if (source == nullptr) {
        Set(kErrorNullCopySource, Message::NullCopySource);
        return;
    }
    Set(source->code_, source->text_);
}

}  // namespace kavrel
