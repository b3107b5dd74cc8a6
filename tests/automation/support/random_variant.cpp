#include "automation/support/random_variant.h"

#include <oleauto.h>

namespace kavrel::tests {

namespace {

const wchar_t* const kTexts[] = {
    L"",
    L"0",
    L"-1",
    L"3.7",
    L"1e300",
    L"no number",
    L"N",
    L"S",
    L"RMC",
    L"GPGGA",
    L"\r\n",
    L"$GPGGA,120410.00,4730.0000,N,00843.0000,E,1,08,1.1,432.5,M,47.9,M,,\r\n",
    L"$GPRMC,120411,A,4730,N,00843,W,22.4,84.4,230394,3.1,W\r\n",
    L"$GPGSA,A,3,02,05,,,,,,,,,,,1.9,1.1,1.6\r\n$GPGSV,1,1,02,02,61,103,44,05,23,288,38\r\n"};

// The last ones before VT_ARRAY no host makes.
const VARTYPE kTypes[] = {VT_EMPTY, VT_NULL, VT_I1,       VT_UI1,     VT_I2,      VT_UI2,
                          VT_I4,    VT_UI4,  VT_I8,       VT_UI8,     VT_INT,     VT_UINT,
                          VT_R4,    VT_R8,   VT_CY,       VT_DATE,    VT_BOOL,    VT_ERROR,
                          VT_BSTR,  VT_BSTR, VT_DISPATCH, VT_UNKNOWN, VT_DECIMAL, VT_HRESULT,
                          VT_BLOB,  VT_PTR,  0x0FFF,      VT_ARRAY};

const VARTYPE kElementTypes[] = {VT_UI1, VT_UI1, VT_VARIANT, VT_VARIANT, VT_I2,
                                 VT_I4,  VT_R8,  VT_BSTR,    VT_DISPATCH};

// Makes `from` a reference to `to`, which is no reference itself or else a variant.
void Refer(VARIANT& from, VARIANT& to, bool asVariant) {
    const bool hasValue = V_VT(&to) != VT_EMPTY && V_VT(&to) != VT_NULL;
    const bool toValue = hasValue && !asVariant;
    V_VT(&from) = static_cast<VARTYPE>(VT_BYREF | (toValue ? V_VT(&to) : int{VT_VARIANT}));
    V_BYREF(&from) = toValue && V_VT(&to) != VT_DECIMAL ? static_cast<void*>(&V_I8(&to)) : &to;
}

}  // namespace

RandomVariant::RandomVariant(Random& random, const Objects& objects)
    : random_(random), objects_(objects) {
    const unsigned depth = random_.Below(8);
    if (depth < 4) {
        Fill(*outer_.get());
    } else if (depth < 7) {
        Fill(*middle_.get());
        Refer(*outer_.get(), *middle_.get(), random_.OneIn(2));
    } else {
        // A variable that holds a reference, handed on by reference.
        Fill(*inner_.get());
        Refer(*middle_.get(), *inner_.get(), random_.OneIn(2));
        outer_ = Var::To(middle_);
    }
    if ((outer_.type() & VT_BYREF) != 0 && random_.OneIn(20)) V_BYREF(outer_.get()) = nullptr;
}

BSTR RandomVariant::MakeText() {
    if (random_.OneIn(10)) return nullptr;
    if (random_.OneIn(4)) {
        std::wstring text(random_.Below(random_.OneIn(20) ? 2000 : 20), L'\0');
        for (wchar_t& c : text)
            c = static_cast<wchar_t>(random_.Below(random_.OneIn(4) ? 0x10000 : 0x80));
        return SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    return SysAllocString(random_.Of(kTexts));
}

void RandomVariant::Fill(VARIANT& variant) {
    const VARTYPE type = random_.Of(kTypes);
    if (type == VT_ARRAY) return FillArray(variant);
    // Small numbers get farther than others.
    V_I8(&variant) = random_.OneIn(3) ? static_cast<LONGLONG>(random_.Bits())
                                      : static_cast<LONGLONG>(random_.Below(64)) - 8;
    switch (type) {
        case VT_BSTR:
            V_BSTR(&variant) = MakeText();
            break;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            V_DISPATCH(&variant) = nullptr;
            if (objects_.empty() || random_.OneIn(8)) break;
            V_DISPATCH(&variant) =
                objects_[random_.Below(static_cast<unsigned>(objects_.size()))].Get();
            V_DISPATCH(&variant)->AddRef();
            break;
        case VT_R4:
            if (!random_.OneIn(3)) V_R4(&variant) = static_cast<float>(random_.Below(720)) / 4 - 90;
            break;
        case VT_R8:
        case VT_DATE:
            if (!random_.OneIn(3)) V_R8(&variant) = random_.Below(7200) / 40.0 - 90;
            break;
        case VT_DECIMAL:
            V_DECIMAL(&variant).Lo64 = random_.Bits();
            V_DECIMAL(&variant).Hi32 = static_cast<ULONG>(random_.Bits());
            V_DECIMAL(&variant).scale = static_cast<BYTE>(random_.Below(29));
            V_DECIMAL(&variant).sign = random_.OneIn(2) ? 0x80 : 0;
            break;
        case VT_ERROR:
            V_ERROR(&variant) = random_.OneIn(2) ? DISP_E_PARAMNOTFOUND : E_FAIL;
            break;
        default:
            break;
    }
    V_VT(&variant) = type;
}

void RandomVariant::FillArray(VARIANT& variant) {
    const VARTYPE type = random_.Of(kElementTypes);
    SAFEARRAYBOUND bounds[2];
    for (SAFEARRAYBOUND& bound : bounds) {
        bound.cElements = random_.Below(12);
        bound.lLbound = static_cast<LONG>(random_.Below(12)) - 6;
    }
    SAFEARRAY* array = nullptr;
    if (!random_.OneIn(12)) array = SafeArrayCreate(type, random_.OneIn(4) ? 2 : 1, bounds);
    void* data = nullptr;
    if (array != nullptr && SUCCEEDED(SafeArrayAccessData(array, &data))) {
        const ULONG count = SafeArrayGetDim(array) == 1 ? bounds[0].cElements : 0;
        for (ULONG i = 0; i < count; ++i) {
            if (type == VT_UI1) static_cast<BYTE*>(data)[i] = static_cast<BYTE>(random_.Bits());
            if (type == VT_BSTR) static_cast<BSTR*>(data)[i] = MakeText();
            if (type != VT_VARIANT) continue;
            VARIANT& element = static_cast<VARIANT*>(data)[i];
            V_VT(&element) = random_.OneIn(2) ? VT_I4 : VT_BSTR;
            if (V_VT(&element) == VT_I4) V_I4(&element) = static_cast<LONG>(random_.Bits());
            if (V_VT(&element) == VT_BSTR) V_BSTR(&element) = MakeText();
        }
        SafeArrayUnaccessData(array);
    }
    V_VT(&variant) = static_cast<VARTYPE>(VT_ARRAY | type);
    V_ARRAY(&variant) = array;
}

}  // namespace kavrel::tests
