// The last error of an engine object: a code and a text.
//
// Every operation clears its object's slot first; a failing operation sets it; callers copy it
// upward. Code 0 means no error. The slot is not guarded: it belongs to whoever runs the operation.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/messages.h"

namespace kavrel {

using ErrorCode = std::uint32_t;

// The library's own error codes. Any other code is an error number of the platform.
inline constexpr ErrorCode kNoError = 0;
inline constexpr ErrorCode kErrorInvalidArgument = 10003;
inline constexpr ErrorCode kErrorIndexOutOfBounds = 10004;
inline constexpr ErrorCode kErrorNullCopySource = 10005;
inline constexpr ErrorCode kErrorWrongState = 10006;
inline constexpr ErrorCode kErrorComPort = 10007;
inline constexpr ErrorCode kErrorWindow = 10018;

class ErrorSlot {
  public:
    ErrorCode code() const { return code_; }
    bool IsSet() const { return code_ != kNoError; }

    // Empty when no error is set.
    std::string_view text() const;

    void Clear() {
        if (code_ != kNoError) Set(kNoError, Message::UnknownError);
    }

    // Code 0 clears the slot whatever the text.
    void Set(ErrorCode code, Message message);

    // For texts that come from outside the library. An empty text becomes the default text.
    void Set(ErrorCode code, std::string_view text);

    // Copies code and text. Copying from nothing is itself an error (10005).
    void CopyFrom(const ErrorSlot* source);

  private:
    // Every record has a slot and hardly any an error: a message of the catalogue is kept by its
    // number, and only a text from outside needs memory.
    ErrorCode code_ = kNoError;
    Message message_ = Message::UnknownError;
    std::unique_ptr<const std::string> ownText_;
};

}  // namespace kavrel
