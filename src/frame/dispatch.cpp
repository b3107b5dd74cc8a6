#include "frame/dispatch.h"

#include <oleauto.h>

#include <array>

#include "frame/com_ref.h"
#include "frame/type_library.h"

namespace kavrel {
namespace {

constexpr WORD kPutKinds = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

constexpr wchar_t ToLower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

bool IsSameName(const char* member, const wchar_t* name) {
    for (; ToLower(static_cast<unsigned char>(*member)) == ToLower(*name); ++member, ++name) {
        if (*member == '\0') return true;
    }
    return false;
}

const Member* FindMember(std::span<const Member> members, DISPID id, WORD kinds) {
    for (const Member& member : members) {
        if (member.id == id && (member.kinds & kinds) != 0) return &member;
    }
    return nullptr;
}

// The out arguments of a call: where the member writes, and the way back to the caller.
class OutArgument {
  public:
    OutArgument() { V_VT(&own_) = VT_EMPTY; }
    ~OutArgument() {
        if (caller_ != nullptr) VariantClear(&own_);
    }
    OutArgument(const OutArgument&) = delete;
    OutArgument& operator=(const OutArgument&) = delete;

    // Null when the caller's argument is nothing to write to.
    VARIANT* Bind(VARIANT* argument) {
        const VARTYPE type = V_VT(argument);
        if ((type & VT_BYREF) == 0 || V_BYREF(argument) == nullptr) return nullptr;
        if (type == (VT_BYREF | VT_VARIANT)) return V_VARIANTREF(argument);
        caller_ = argument;
        return &own_;
    }

    // Brings a value to the caller who gave a reference to something else than a variant.
    HRESULT PassBack() {
        if (caller_ == nullptr) return S_OK;
        const VARTYPE type = V_VT(caller_) & ~VT_BYREF;
        const HRESULT result = VariantChangeType(&own_, &own_, 0, type);
        if (FAILED(result)) return result;
        switch (type) {
            case VT_I2:
                *V_I2REF(caller_) = V_I2(&own_);
                return S_OK;
            case VT_I4:
                *V_I4REF(caller_) = V_I4(&own_);
                return S_OK;
            case VT_R4:
                *V_R4REF(caller_) = V_R4(&own_);
                return S_OK;
            case VT_R8:
                *V_R8REF(caller_) = V_R8(&own_);
                return S_OK;
            case VT_BSTR:
                SysFreeString(*V_BSTRREF(caller_));
                *V_BSTRREF(caller_) = V_BSTR(&own_);
                V_VT(&own_) = VT_EMPTY;
                return S_OK;
            default:
                return DISP_E_TYPEMISMATCH;
        }
    }

  private:
    VARIANT own_;
    VARIANT* caller_ = nullptr;
};

// One late-bound call: puts the arguments in order, calls, and gives the results back.
class Call {
  public:
    Call(const Member& member, const DISPPARAMS& parameters)
        : member_(member), parameters_(parameters) {
        VariantInit(&missing_);
        V_VT(&missing_) = VT_ERROR;
        V_ERROR(&missing_) = DISP_E_PARAMNOTFOUND;
    }

    // On a failure, `badArgument` is the index of the argument to blame, as the caller counts.
    HRESULT Bind(UINT& badArgument) {
        const UINT given = parameters_.cArgs;
        if (given > member_.argumentCount || given < member_.requiredCount ||
            parameters_.cNamedArgs > given) {
            return DISP_E_BADPARAMCOUNT;
        }
        for (UINT place = 0; place < given; ++place) {
            badArgument = place;
            const UINT i = IndexOf(place);
            if (i >= member_.argumentCount || arguments_[i] != nullptr) {
                return DISP_E_PARAMNOTFOUND;
            }
            VARIANT* const argument = &parameters_.rgvarg[place];
            arguments_[i] = IsOut(i) ? outs_[i].Bind(argument) : argument;
            if (arguments_[i] == nullptr) return DISP_E_TYPEMISMATCH;
        }
        for (UINT i = 0; i < member_.argumentCount; ++i) {
            if (arguments_[i] != nullptr) continue;
            if (i < member_.requiredCount) return DISP_E_PARAMNOTOPTIONAL;
            arguments_[i] = &missing_;
        }
        return S_OK;
    }

    HRESULT Run(IDispatch* self, VARIANT* result) {
        arguments_[member_.argumentCount] = result;
        return CallMember(member_, self, arguments_.data());
    }

    HRESULT PassBack(UINT& badArgument) {
        for (UINT i = 0; i < member_.argumentCount; ++i) {
            const HRESULT result = outs_[i].PassBack();
            if (FAILED(result)) {
                badArgument = parameters_.cArgs - 1 - i;
                return result;
            }
        }
        return S_OK;
    }

  private:
    // Which argument a given one is. Named ones come first, by their number among the arguments;
    // the value of a property put has a name of its own and is the last. The others come reversed.
    UINT IndexOf(UINT place) const {
        if (place >= parameters_.cNamedArgs) return parameters_.cArgs - 1 - place;
        const DISPID name = parameters_.rgdispidNamedArgs[place];
        const bool isPut = (member_.kinds & kPutKinds) != 0;
        if (name == DISPID_PROPERTYPUT && isPut) return member_.argumentCount - 1U;
        return static_cast<UINT>(name);
    }

    bool IsOut(UINT index) const { return (member_.outMask >> index & 1U) != 0; }

    const Member& member_;
    const DISPPARAMS& parameters_;
    VARIANT missing_;
    std::array<OutArgument, kMaxArguments> outs_;
    std::array<VARIANT*, kMaxArguments + 1> arguments_{};
};

// Moves the thread's error object into the structure that late-bound callers get.
HRESULT GiveException(HRESULT failure, EXCEPINFO* exception) {
    if (exception == nullptr) return DISP_E_EXCEPTION;
    *exception = EXCEPINFO{};
    exception->scode = failure;

    ComRef<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) == S_OK) {
        info->GetSource(&exception->bstrSource);
        info->GetDescription(&exception->bstrDescription);
        info->GetHelpFile(&exception->bstrHelpFile);
        info->GetHelpContext(&exception->dwHelpContext);
    }
    return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT CallMember(const Member& member, IDispatch* self, VARIANT* const* arguments) {
    const AnyMemberFunction& function = member.function;
    VARIANT* const* const a = arguments;
    switch (member.signature) {
        case Signature::Object:
            V_VT(a[0]) = VT_UNKNOWN;
            V_UNKNOWN(a[0]) = nullptr;
            return (self->*function.object)(&V_UNKNOWN(a[0]));
        case Signature::Out:
            return (self->*function.out)(a[0]);
        case Signature::Outs4:
            return (self->*function.outs4)(a[0], a[1], a[2], a[3]);
        case Signature::In:
            return (self->*function.in)(*a[0]);
        case Signature::Ins2:
            return (self->*function.ins2)(*a[0], *a[1]);
        case Signature::Ins3:
            return (self->*function.ins3)(*a[0], *a[1], *a[2]);
        case Signature::Ins4:
            return (self->*function.ins4)(*a[0], *a[1], *a[2], *a[3]);
        case Signature::InOut:
            return (self->*function.inOut)(*a[0], a[1]);
        case Signature::Ins2Out:
            return (self->*function.ins2Out)(*a[0], *a[1], a[2]);
    }
    return E_UNEXPECTED;
}

HRESULT GetMemberIds(const ClassDescription& description, LPOLESTR* names, UINT count, LCID,
                     DISPID* ids) {
    if (names == nullptr || ids == nullptr) return E_POINTER;
    if (count == 0) return E_INVALIDARG;
    if (count > 1) {
        ComRef<ITypeInfo> type;
        const HRESULT result = GetTypeDescription(description.interfaceId, type);
        return FAILED(result) ? result : type->GetIDsOfNames(names, count, ids);
    }
    for (const Member& member : description.members) {
        if (!IsSameName(member.name, names[0])) continue;
        ids[0] = member.id;
        return S_OK;
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT InvokeMember(const ClassDescription& description, IDispatch* self, DISPID id,
                     REFIID reserved, LCID, WORD kinds, DISPPARAMS* parameters, VARIANT* result,
                     EXCEPINFO* exception, UINT* argumentError) {
    if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (parameters == nullptr) return E_POINTER;
    const Member* const member = FindMember(description.members, id, kinds);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;

    UINT badArgument = 0;
    Call call(*member, *parameters);
    HRESULT outcome = call.Bind(badArgument);
    if (SUCCEEDED(outcome)) {
        VARIANT unwanted;
        VARIANT* const target = result != nullptr ? result : &unwanted;
        VariantInit(target);
        outcome = call.Run(self, member->hasResult ? target : nullptr);
        if (result == nullptr) VariantClear(&unwanted);
        if (FAILED(outcome)) return GiveException(outcome, exception);
        outcome = call.PassBack(badArgument);
    }
    const bool hasBadArgument = outcome == DISP_E_TYPEMISMATCH || outcome == DISP_E_PARAMNOTFOUND;
    if (hasBadArgument && argumentError != nullptr) *argumentError = badArgument;
    return outcome;
}

}  // namespace kavrel
