#include "frame/variant_in.h"

#include <oleauto.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "platform/win32/readable_variant.h"

namespace kavrel {
namespace {

// What the arguments' conversions rely on; hosts of other compilers have the same layout.
static_assert(sizeof(VARIANT) == (sizeof(void*) == 8 ? 24 : 16));
static_assert(sizeof(VARIANT_BOOL) == 2 && sizeof(OLECHAR) == 2);

const VARIANT& Referenced(const VARIANT& argument) {
    const bool isReference = V_VT(&argument) == (VT_BYREF | VT_VARIANT);
    return isReference && V_VARIANTREF(&argument) != nullptr ? *V_VARIANTREF(&argument) : argument;
}

// The argument as a variant of the wanted type, or of type VT_EMPTY with all bytes 0.
class Coerced {
  public:
    Coerced(const VARIANT& argument, VARTYPE wanted) : value_(&Referenced(argument)) {
        VariantInit(&own_);
        V_I8(&own_) = 0;
        if (V_VT(value_) == wanted) return;

        const VARIANT* const source = std::exchange(value_, &own_);
        if (!IsReadable(*source)) return;
        if (SUCCEEDED(VariantChangeType(&own_, const_cast<VARIANT*>(source), 0, wanted))) return;
        VariantClear(&own_);
        V_I8(&own_) = 0;
    }
    ~Coerced() { VariantClear(&own_); }
    Coerced(const Coerced&) = delete;
    Coerced& operator=(const Coerced&) = delete;

    const VARIANT* operator->() const { return value_; }
    const VARIANT* get() const { return value_; }

  private:
    VARIANT own_;
    const VARIANT* value_;
};

// The characters of a string variant, cut to 8 bits each.
template <typename Container>
Container CutCharacters(const VARIANT* value) {
    const BSTR text = V_VT(value) == VT_BSTR ? V_BSTR(value) : nullptr;
    const std::size_t length = text != nullptr ? SysStringLen(text) : 0;
    Container cut(length, typename Container::value_type{});
    for (std::size_t i = 0; i < length; ++i) {
        cut[i] = static_cast<typename Container::value_type>(text[i]);
    }
    return cut;
}

SAFEARRAY* ArrayIn(const VARIANT& value) {
    if ((V_VT(&value) & VT_ARRAY) == 0) return nullptr;
    if ((V_VT(&value) & VT_BYREF) == 0) return V_ARRAY(&value);
    return V_ARRAYREF(&value) != nullptr ? *V_ARRAYREF(&value) : nullptr;
}

// Access to the elements of an array for a scope.
class ArrayAccess {
  public:
    explicit ArrayAccess(SAFEARRAY* array) : array_(array) {
        if (FAILED(SafeArrayAccessData(array_, &data_))) data_ = nullptr;
    }
    ~ArrayAccess() {
        if (data_ != nullptr) SafeArrayUnaccessData(array_);
    }
    ArrayAccess(const ArrayAccess&) = delete;
    ArrayAccess& operator=(const ArrayAccess&) = delete;

    template <typename Element>
    const Element* data() const {
        return static_cast<const Element*>(data_);
    }

  private:
    SAFEARRAY* array_;
    void* data_ = nullptr;
};

// The number of elements of a one-dimensional array, or -1.
std::int64_t ElementCount(SAFEARRAY* array) {
    LONG lower = 0;
    LONG upper = 0;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(array, 1, &upper))) {
        return -1;
    }
    return std::int64_t{upper} - lower + 1;
}

}  // namespace

std::int16_t ToInt16(const VARIANT& argument) {
    return V_I2(Coerced(argument, VT_I2).get());
}

std::int32_t ToInt32(const VARIANT& argument) {
    return V_I4(Coerced(argument, VT_I4).get());
}

std::uint8_t ToByte(const VARIANT& argument) {
    return V_UI1(Coerced(argument, VT_UI1).get());
}

float ToSingle(const VARIANT& argument) {
    return V_R4(Coerced(argument, VT_R4).get());
}

double ToDouble(const VARIANT& argument) {
    return V_R8(Coerced(argument, VT_R8).get());
}

bool ToBool(const VARIANT& argument) {
    return V_BOOL(Coerced(argument, VT_BOOL).get()) != 0;
}

TextArgument::TextArgument(const VARIANT& argument) {
    const Coerced value(argument, VT_BSTR);
    text_ = CutCharacters<std::string>(value.get());
    isAbsent_ = V_VT(value.get()) == VT_BSTR && V_BSTR(value.get()) == nullptr;
}

WideTextArgument::WideTextArgument(const VARIANT& argument) {
    const Coerced value(argument, VT_BSTR);
    const BSTR text = V_VT(value.get()) == VT_BSTR ? V_BSTR(value.get()) : nullptr;
    if (text != nullptr) wide_.assign(text, text + SysStringLen(text));
    narrow_ = Narrowed(wide_);
    if (!NeedsWide(wide_)) wide_.clear();
    isAbsent_ = V_VT(value.get()) == VT_BSTR && text == nullptr;
}

bool IsText(const VARIANT& argument) {
    return (V_VT(&Referenced(argument)) & ~VT_BYREF) == VT_BSTR;
}

bool IsArray(const VARIANT& argument) {
    return V_ISARRAY(&Referenced(argument));
}

Ref<ByteBlock> BytesFromString(const VARIANT& argument) {
    const Coerced value(argument, VT_BSTR);
    return MakeRef<ByteBlock>(CutCharacters<std::vector<std::uint8_t>>(value.get()));
}

Ref<ByteBlock> BytesFromArray(const VARIANT& argument) {
    const VARIANT& value = Referenced(argument);
    SAFEARRAY* const array = ArrayIn(value);
    if (array == nullptr) return nullptr;
    const std::int64_t count = ElementCount(array);
    if (count < 0) return nullptr;

    const UINT elementSize = SafeArrayGetElemsize(array);
    const VARTYPE elementType = V_VT(&value) & VT_TYPEMASK;
    const bool holdsBytes = elementType == VT_UI1 && elementSize == 1;
    const bool holdsVariants = elementType == VT_VARIANT && elementSize == sizeof(VARIANT);
    if (!holdsBytes && !holdsVariants) return nullptr;

    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
    if (count == 0) return MakeRef<ByteBlock>(std::move(bytes));
    const ArrayAccess access(array);
    if (access.data<void>() == nullptr) return nullptr;
    if (holdsBytes) {
        const auto* const elements = access.data<std::uint8_t>();
        bytes.assign(elements, elements + count);
    } else {
        const auto* const elements = access.data<VARIANT>();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>(ToInt32(elements[i]));
        }
    }
    return MakeRef<ByteBlock>(std::move(bytes));
}

HRESULT ToObject(const VARIANT& argument, REFIID interfaceId, void** object) {
    *object = nullptr;
    const VARIANT& value = Referenced(argument);
    IUnknown* held = nullptr;
    switch (V_VT(&value)) {
        case VT_NULL:
            return S_OK;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            held = V_UNKNOWN(&value);
            break;
        case VT_BYREF | VT_DISPATCH:
        case VT_BYREF | VT_UNKNOWN:
            held = V_UNKNOWNREF(&value) != nullptr ? *V_UNKNOWNREF(&value) : nullptr;
            break;
        default:
            return E_NOINTERFACE;
    }
    return held != nullptr ? held->QueryInterface(interfaceId, object) : S_OK;
}

}  // namespace kavrel
