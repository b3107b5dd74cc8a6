#include "automation/typelib_dump.h"

#include <wrl/client.h>

#include <span>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

struct FlagName {
    WORD bit;
    const char* name;
};

constexpr FlagName kTypeFlags[] = {
    {TYPEFLAG_FAPPOBJECT, "appobject"},
    {TYPEFLAG_FCANCREATE, "creatable"},
    {TYPEFLAG_FLICENSED, "licensed"},
    {TYPEFLAG_FPREDECLID, "predeclid"},
    {TYPEFLAG_FHIDDEN, "hidden"},
    {TYPEFLAG_FCONTROL, "control"},
    {TYPEFLAG_FDUAL, "dual"},
    {TYPEFLAG_FNONEXTENSIBLE, "nonextensible"},
    {TYPEFLAG_FOLEAUTOMATION, "oleautomation"},
    {TYPEFLAG_FRESTRICTED, "restricted"},
    {TYPEFLAG_FAGGREGATABLE, "aggregatable"},
    {TYPEFLAG_FDISPATCHABLE, "dispatchable"},
};
constexpr FlagName kMemberFlags[] = {
    {FUNCFLAG_FRESTRICTED, "restricted"},
    {FUNCFLAG_FSOURCE, "source"},
    {FUNCFLAG_FBINDABLE, "bindable"},
    {FUNCFLAG_FHIDDEN, "hidden"},
    {FUNCFLAG_FUSESGETLASTERROR, "usesgetlasterror"},
};
constexpr FlagName kParameterFlags[] = {
    {PARAMFLAG_FIN, "in"},         {PARAMFLAG_FOUT, "out"},      {PARAMFLAG_FLCID, "lcid"},
    {PARAMFLAG_FRETVAL, "retval"}, {PARAMFLAG_FOPT, "optional"}, {PARAMFLAG_FHASDEFAULT, "default"},
};
constexpr FlagName kImplementFlags[] = {
    {IMPLTYPEFLAG_FDEFAULT, "default"},
    {IMPLTYPEFLAG_FSOURCE, "source"},
    {IMPLTYPEFLAG_FRESTRICTED, "restricted"},
};

std::string FlagNames(std::span<const FlagName> names, unsigned flags) {
    std::string text;
    for (const FlagName& flag : names) {
        if ((flags & flag.bit) == 0) continue;
        if (!text.empty()) text += ' ';
        text += flag.name;
    }
    return text;
}

// Takes ownership of `text`. The libraries dumped here are ASCII; anything else shows as '?'.
std::string TakeText(BSTR text) {
    std::string result;
    for (UINT i = 0; i < SysStringLen(text); ++i) {
        result += text[i] < 128 ? static_cast<char>(text[i]) : '?';
    }
    SysFreeString(text);
    return result;
}

std::string GuidText(REFGUID guid) {
    OLECHAR buffer[40];
    const int length = StringFromGUID2(guid, buffer, 40);
    return TakeText(SysAllocStringLen(buffer, static_cast<UINT>(length - 1)));
}

std::string NameOf(ITypeInfo* info) {
    BSTR name = nullptr;
    return FAILED(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr))
               ? "?"
               : TakeText(name);
}

std::string HelpOf(ITypeInfo* info, MEMBERID id) {
    BSTR help = nullptr;
    return FAILED(info->GetDocumentation(id, nullptr, &help, nullptr, nullptr)) ? "?"
                                                                                : TakeText(help);
}

std::string TypeName(ITypeInfo* info, const TYPEDESC& type) {
    switch (type.vt) {
        case VT_PTR:
            return TypeName(info, *type.lptdesc) + "*";
        case VT_SAFEARRAY:
            return "SAFEARRAY(" + TypeName(info, *type.lptdesc) + ")";
        case VT_USERDEFINED: {
            ComPtr<ITypeInfo> named;
            return FAILED(info->GetRefTypeInfo(type.hreftype, &named)) ? "?" : NameOf(named.Get());
        }
        case VT_VARIANT:
            return "VARIANT";
        case VT_HRESULT:
            return "HRESULT";
        case VT_VOID:
            return "void";
        case VT_UNKNOWN:
            return "IUnknown*";
        case VT_DISPATCH:
            return "IDispatch*";
        default:
            return "VARTYPE(" + std::to_string(type.vt) + ")";
    }
}

MemberDescription DescribeMember(ITypeInfo* info, const FUNCDESC& function) {
    constexpr UINT kMostNames = 32;
    BSTR names[kMostNames] = {};
    UINT count = 0;
    info->GetNames(function.memid, names, kMostNames, &count);

    MemberDescription member;
    if (count > 0) member.name = TakeText(names[0]);
    member.id = function.memid;
    member.kind = function.invkind;
    member.flags = FlagNames(kMemberFlags, function.wFuncFlags);
    // FUNC_DISPATCH members have no place in a vtable.
    if (function.funckind != FUNC_DISPATCH) {
        member.slot = function.oVft / static_cast<int>(sizeof(void*));
    }
    for (UINT i = 0; i < static_cast<UINT>(function.cParams); ++i) {
        const ELEMDESC& parameter = function.lprgelemdescParam[i];
        std::string text = "[" + FlagNames(kParameterFlags, parameter.paramdesc.wParamFlags) + "] ";
        text += TypeName(info, parameter.tdesc);
        // Names are found by the id, which a put shares with its get: they are those of the get.
        const bool isNamed = (function.invkind & (INVOKE_FUNC | INVOKE_PROPERTYGET)) != 0;
        if (isNamed && i + 1 < count) text += " " + TakeText(std::exchange(names[i + 1], nullptr));
        member.parameters.push_back(text);
    }
    for (UINT i = 1; i < count; ++i)
        SysFreeString(names[i]);
    member.returnType = TypeName(info, function.elemdescFunc.tdesc);
    member.helpString = HelpOf(info, function.memid);
    return member;
}

void DescribeImplemented(ITypeInfo* info, UINT count, std::vector<std::string>* implemented) {
    for (UINT i = 0; i < count; ++i) {
        HREFTYPE reference = 0;
        INT flags = 0;
        ComPtr<ITypeInfo> other;
        if (FAILED(info->GetRefTypeOfImplType(i, &reference)) ||
            FAILED(info->GetRefTypeInfo(reference, &other))) {
            continue;
        }
        info->GetImplTypeFlags(i, &flags);
        const std::string names = FlagNames(kImplementFlags, static_cast<unsigned>(flags));
        implemented->push_back((names.empty() ? "" : "[" + names + "] ") + NameOf(other.Get()));
    }
}

void DescribeConstants(ITypeInfo* info, UINT count, std::vector<ConstantDescription>* constants) {
    for (UINT i = 0; i < count; ++i) {
        VARDESC* variable = nullptr;
        if (FAILED(info->GetVarDesc(i, &variable))) continue;
        BSTR name = nullptr;
        UINT names = 0;
        info->GetNames(variable->memid, &name, 1, &names);
        if (variable->varkind == VAR_CONST) {
            constants->push_back({TakeText(name), V_I4(variable->lpvarValue)});
        } else {
            SysFreeString(name);
        }
        info->ReleaseVarDesc(variable);
    }
}

std::string KindName(const TYPEATTR& attributes) {
    switch (attributes.typekind) {
        case TKIND_ENUM:
            return "enum";
        case TKIND_INTERFACE:
            return (attributes.wTypeFlags & TYPEFLAG_FDUAL) != 0 ? "dual interface" : "interface";
        case TKIND_DISPATCH:
            return "dispinterface";
        case TKIND_COCLASS:
            return "coclass";
        default:
            return "other";
    }
}

// The vtable side of a dual interface; any other type as it is.
ComPtr<ITypeInfo> VtableSide(ITypeInfo* info) {
    constexpr UINT kOtherSide = static_cast<UINT>(-1);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> vtableSide;
    if (SUCCEEDED(info->GetRefTypeOfImplType(kOtherSide, &reference)) &&
        SUCCEEDED(info->GetRefTypeInfo(reference, &vtableSide))) {
        TYPEATTR* attributes = nullptr;
        if (SUCCEEDED(vtableSide->GetTypeAttr(&attributes))) {
            const bool isVtable = attributes->typekind == TKIND_INTERFACE;
            vtableSide->ReleaseTypeAttr(attributes);
            if (isVtable) return vtableSide;
        }
    }
    return info;
}

TypeDescription DescribeType(ITypeInfo* info) {
    TypeDescription type;
    TYPEATTR* attributes = nullptr;
    if (FAILED(info->GetTypeAttr(&attributes))) return type;
    type.kind = KindName(*attributes);
    type.name = NameOf(info);
    type.guid = GuidText(attributes->guid);
    type.flags = attributes->wTypeFlags;
    type.helpString = HelpOf(info, MEMBERID_NIL);
    DescribeImplemented(info, attributes->cImplTypes, &type.implements);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(info->GetFuncDesc(i, &function))) continue;
        type.members.push_back(DescribeMember(info, *function));
        info->ReleaseFuncDesc(function);
    }
    DescribeConstants(info, attributes->cVars, &type.constants);
    info->ReleaseTypeAttr(attributes);
    return type;
}

const char* KindName(INVOKEKIND kind) {
    switch (kind) {
        case INVOKE_PROPERTYGET:
            return "get";
        case INVOKE_PROPERTYPUT:
            return "put";
        case INVOKE_PROPERTYPUTREF:
            return "putref";
        default:
            return "method";
    }
}

std::string DumpMember(const MemberDescription& member) {
    std::string text = "  ";
    if (member.slot >= 0) text += "slot " + std::to_string(member.slot) + " ";
    text += "id " + std::to_string(member.id) + " " + KindName(member.kind) + " " + member.name;
    text += '(';
    for (size_t i = 0; i < member.parameters.size(); ++i) {
        text += (i == 0 ? "" : ", ") + member.parameters[i];
    }
    text += ") -> " + member.returnType;
    if (!member.flags.empty()) text += " {" + member.flags + "}";
    return text + " \"" + member.helpString + "\"\n";
}

}  // namespace

LibraryDescription DescribeTypeLibrary(ITypeLib* library) {
    LibraryDescription description;
    TLIBATTR* attributes = nullptr;
    BSTR name = nullptr;
    BSTR help = nullptr;
    if (FAILED(library->GetLibAttr(&attributes))) return description;
    library->GetDocumentation(-1, &name, &help, nullptr, nullptr);
    description.heading = TakeText(name) + " " + GuidText(attributes->guid) + " version " +
                          std::to_string(attributes->wMajorVerNum) + "." +
                          std::to_string(attributes->wMinorVerNum) + " locale " +
                          std::to_string(attributes->lcid) + " \"" + TakeText(help) + "\"";
    library->ReleaseTLibAttr(attributes);

    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        ComPtr<ITypeInfo> info;
        if (SUCCEEDED(library->GetTypeInfo(i, &info))) {
            description.types.push_back(DescribeType(VtableSide(info.Get()).Get()));
        }
    }
    return description;
}

std::string DumpTypeLibrary(const LibraryDescription& library) {
    std::string text = "library " + library.heading + "\n";
    for (const TypeDescription& type : library.types) {
        text += "\n" + type.kind + " " + type.name + " " + type.guid + " {" +
                FlagNames(kTypeFlags, type.flags) + "} \"" + type.helpString + "\"\n";
        for (const std::string& name : type.implements)
            text += "  implements " + name + "\n";
        for (const MemberDescription& member : type.members)
            text += DumpMember(member);
        for (const ConstantDescription& constant : type.constants) {
            text += "  " + constant.name + " = " + std::to_string(constant.value) + "\n";
        }
    }
    return text;
}

}  // namespace kavrel::tests
