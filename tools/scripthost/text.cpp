#include "text.h"

#include <memory>

namespace scripthost {

namespace {

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

// A VARIANT that clears itself.
struct OwnedVariant {
    OwnedVariant() { VariantInit(&value); }
    ~OwnedVariant() { VariantClear(&value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    // Takes a copy of `source`, brought to `type`; false when it cannot be.
    bool Convert(const VARIANT& source, VARTYPE type, USHORT flags) {
        if (FAILED(VariantCopyInd(&value, const_cast<VARIANT*>(&source)))) return false;
        return SUCCEEDED(VariantChangeType(&value, &value, flags, type));
    }

    VARIANT value;
};

bool IsVoid(const VARIANT& value) {
    const VARIANT& target = V_VT(&value) == (VT_BYREF | VT_VARIANT) ? *V_VARIANTREF(&value) : value;
    return V_VT(&target) == VT_EMPTY || V_VT(&target) == VT_NULL;
}

}  // namespace

void PrintLine(FILE* file, std::wstring_view line) {
    const int length = static_cast<int>(line.size());
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, line.data(), length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.data(), length, utf8.data(), bytes, nullptr, nullptr);
    utf8 += '\n';
    std::fwrite(utf8.data(), 1, utf8.size(), file);
    std::fflush(file);
}

std::optional<std::wstring> ReadTextFile(const std::wstring& path) {
    const std::unique_ptr<FILE, FileCloser> file(_wfopen(path.c_str(), L"rb"));
    if (!file) return std::nullopt;
    std::string bytes;
    char block[4096];
    while (const size_t count = std::fread(block, 1, sizeof block, file.get())) {
        bytes.append(block, count);
    }
    if (std::ferror(file.get())) return std::nullopt;
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);

    const int length = static_cast<int>(bytes.size());
    const int chars = MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, nullptr, 0);
    std::wstring text(static_cast<size_t>(chars), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), length, text.data(), chars);
    return text;
}

std::optional<std::wstring> ToText(const VARIANT& value) {
    if (IsVoid(value)) return std::wstring();
    OwnedVariant text;
    if (!text.Convert(value, VT_BSTR, VARIANT_ALPHABOOL)) return std::nullopt;
    const BSTR string = V_BSTR(&text.value);
    return std::wstring(string, SysStringLen(string));
}

std::optional<LONG> ToInteger(const VARIANT& value) {
    OwnedVariant number;
    if (!number.Convert(value, VT_I4, 0)) return std::nullopt;
    return V_I4(&number.value);
}

std::wstring ToHex(DWORD value) {
    std::wstring digits(8, L'0');
    for (size_t i = digits.size(); i-- > 0; value >>= 4)
        digits[i] = L"0123456789abcdef"[value & 15];
    return digits;
}

}  // namespace scripthost
