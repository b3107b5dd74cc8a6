#pragma once

#include <windows.h>

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace scripthost {

// Writes one line as UTF-8 and flushes, so that nothing is lost when the process is ended.
void PrintLine(FILE* file, std::wstring_view line);

// The content of a UTF-8 file (with or without a byte order mark), or nothing when it cannot be
// read.
std::optional<std::wstring> ReadTextFile(const std::wstring& path);

// The value as text: booleans as True and False, Null and Empty as "". Follows one reference.
// Nothing when the value has no text form.
std::optional<std::wstring> ToText(const VARIANT& value);

// The value as a 32-bit integer, or nothing when it is not a number.
std::optional<LONG> ToInteger(const VARIANT& value);

// Eight hexadecimal digits.
std::wstring ToHex(DWORD value);

}  // namespace scripthost
