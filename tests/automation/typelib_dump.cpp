#include "automation/typelib_dump.h"

#include <wrl/client.h>

#include <initializer_list>
#include <utility>

#include "automation/support/var.h"

using Microsoft::WRL::ComPtr;

namespace kavrel::tests {

namespace {

using Names = std::initializer_list<std::pair<int, const char*>>;

// What has no name shows as a number.
std::string NameOf(int value, Names names) {
    for (const auto& [number, name] : names) {
        if (number == value) return name;
    }
    return std::to_string(value);
}

std::string FlagNames(int flags, Names names) {
    std::string text;
    for (const auto& [bit, name] : names) {
        if ((flags & bit) == 0) continue;
        text += (text.empty() ? "" : " ") + std::string(name);
        flags &= ~bit;
    }
    return flags == 0 ? text : text + ' ' + std::to_string(flags);
}

std::string TakeText(BSTR text) {
    const std::wstring taken(text != nullptr ? text : L"", SysStringLen(text));
    SysFreeString(text);
    return Narrow(taken);
}

std::string GuidText(REFGUID guid) {
    OLECHAR text[40] = {};
    StringFromGUID2(guid, text, 40);
    return Narrow(text);
}

std::string NameOf(ITypeInfo* info) {
    BSTR name = nullptr;
    info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
    return TakeText(name);
}

std::string QuotedHelp(ITypeInfo* info, MEMBERID id) {
    BSTR help = nullptr;
    info->GetDocumentation(id, nullptr, &help, nullptr, nullptr);
    return " \"" + TakeText(help) + "\"\n";
}

std::string TypeName(const TYPEDESC& type) {
    if (type.vt == VT_PTR) return TypeName(*type.lptdesc) + "*";
    return NameOf(type.vt, {{VT_VARIANT, "VARIANT"},
                            {VT_HRESULT, "HRESULT"},
                            {VT_VOID, "void"},
                            {VT_UNKNOWN, "IUnknown*"}});
}

std::string ParameterText(const ELEMDESC& parameter, const std::string& name) {
    return "[" +
           FlagNames(parameter.paramdesc.wParamFlags, {{PARAMFLAG_FIN, "in"},
                                                       {PARAMFLAG_FOUT, "out"},
                                                       {PARAMFLAG_FRETVAL, "retval"},
                                                       {PARAMFLAG_FOPT, "optional"}}) +
           "] " + TypeName(parameter.tdesc) + (name.empty() ? "" : " " + name);
}

void DescribeMember(ITypeInfo* info, const FUNCDESC& function, TypeDescription& type) {
    std::vector<BSTR> names(static_cast<size_t>(function.cParams) + 1);
    UINT count = 0;
    info->GetNames(function.memid, names.data(), static_cast<UINT>(names.size()), &count);
    MemberDescription& member = type.members.emplace_back();
    member.name = TakeText(names[0]);
    member.id = function.memid;
    member.kind = function.invkind;
    type.text += ' ';
    // FUNC_DISPATCH members have no place in a vtable.
    if (function.funckind != FUNC_DISPATCH) {
        member.slot = function.oVft / static_cast<int>(sizeof(void*));
        type.text += " slot " + std::to_string(member.slot);
    }
    type.text += " id " + std::to_string(member.id) + ' ' +
                 NameOf(member.kind, {{INVOKE_FUNC, "method"},
                                      {INVOKE_PROPERTYGET, "get"},
                                      {INVOKE_PROPERTYPUT, "put"},
                                      {INVOKE_PROPERTYPUTREF, "putref"}}) +
                 ' ' + member.name + '(';
    for (size_t i = 1; i < names.size(); ++i) {
        // Names are found by the id, which a put shares with its get: they are those of the get.
        const bool isNamed = (function.invkind & (INVOKE_FUNC | INVOKE_PROPERTYGET)) != 0;
        const std::string name = TakeText(names[i]);
        member.parameters.push_back(
            ParameterText(function.lprgelemdescParam[i - 1], isNamed ? name : ""));
        type.text += (i > 1 ? ", " : "") + member.parameters.back();
    }
    const std::string flags =
        FlagNames(function.wFuncFlags, {{FUNCFLAG_FRESTRICTED, "restricted"}});
    type.text += ") -> " + TypeName(function.elemdescFunc.tdesc) +
                 (flags.empty() ? "" : " {" + flags + "}") + QuotedHelp(info, member.id);
}

void DescribeImplemented(ITypeInfo* info, UINT index, TypeDescription& type) {
    HREFTYPE reference = 0;
    INT flags = 0;
    ComPtr<ITypeInfo> other;
    info->GetRefTypeOfImplType(index, &reference);
    info->GetImplTypeFlags(index, &flags);
    if (FAILED(info->GetRefTypeInfo(reference, &other))) return;
    const std::string names =
        FlagNames(flags, {{IMPLTYPEFLAG_FDEFAULT, "default"}, {IMPLTYPEFLAG_FSOURCE, "source"}});
    type.text += "  implements " + (names.empty() ? "" : "[" + names + "] ") + NameOf(other.Get());
    type.text += '\n';
}

void DescribeConstant(ITypeInfo* info, const VARDESC& variable, TypeDescription& type) {
    BSTR name = nullptr;
    UINT count = 0;
    info->GetNames(variable.memid, &name, 1, &count);
    type.text += "  " + TakeText(name) + " = " + std::to_string(V_I4(variable.lpvarValue)) + '\n';
}

TypeDescription DescribeType(ITypeInfo* info) {
    TypeDescription type;
    TYPEATTR* attributes = nullptr;
    if (FAILED(info->GetTypeAttr(&attributes))) return type;
    type.name = NameOf(info);
    type.id = attributes->guid;
    type.text = NameOf(attributes->typekind, {{TKIND_ENUM, "enum"},
                                              {TKIND_INTERFACE, "interface"},
                                              {TKIND_DISPATCH, "dispinterface"},
                                              {TKIND_COCLASS, "coclass"}}) +
                ' ' + type.name + ' ' + GuidText(type.id) + " {" +
                FlagNames(attributes->wTypeFlags, {{TYPEFLAG_FCANCREATE, "creatable"},
                                                   {TYPEFLAG_FDUAL, "dual"},
                                                   {TYPEFLAG_FOLEAUTOMATION, "oleautomation"},
                                                   {TYPEFLAG_FDISPATCHABLE, "dispatchable"}}) +
                "}" + QuotedHelp(info, MEMBERID_NIL);
    for (UINT i = 0; i < attributes->cImplTypes; ++i)
        DescribeImplemented(info, i, type);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        if (FAILED(info->GetFuncDesc(i, &function))) continue;
        DescribeMember(info, *function, type);
        info->ReleaseFuncDesc(function);
    }
    for (UINT i = 0; i < attributes->cVars; ++i) {
        VARDESC* variable = nullptr;
        if (FAILED(info->GetVarDesc(i, &variable))) continue;
        DescribeConstant(info, *variable, type);
        info->ReleaseVarDesc(variable);
    }
    info->ReleaseTypeAttr(attributes);
    return type;
}

TypeDescription DescribeHeading(ITypeLib* library) {
    TypeDescription heading;
    TLIBATTR* attributes = nullptr;
    BSTR name = nullptr;
    BSTR help = nullptr;
    if (FAILED(library->GetLibAttr(&attributes))) return heading;
    library->GetDocumentation(-1, &name, &help, nullptr, nullptr);
    heading.text = "library " + TakeText(name) + ' ' + GuidText(attributes->guid) + " version " +
                   std::to_string(attributes->wMajorVerNum) + '.' +
                   std::to_string(attributes->wMinorVerNum) + " locale " +
                   std::to_string(attributes->lcid) + " \"" + TakeText(help) + "\"\n";
    library->ReleaseTLibAttr(attributes);
    return heading;
}

}  // namespace

const std::vector<TypeDescription>& DescribeTypeLibrary() {
    static const std::vector<TypeDescription> types = [] {
        const std::string path = KAVREL_DLL;
        ComPtr<ITypeLib> library;
        LoadTypeLibEx(std::wstring(path.begin(), path.end()).c_str(), REGKIND_NONE, &library);
        if (!library) return std::vector<TypeDescription>();
        std::vector<TypeDescription> found{DescribeHeading(library.Get())};
        for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
            ComPtr<ITypeInfo> info;
            if (FAILED(library->GetTypeInfo(i, &info))) continue;
            // A dual interface has another side: the vtable.
            constexpr UINT kOtherSide = static_cast<UINT>(-1);
            HREFTYPE reference = 0;
            ComPtr<ITypeInfo> other;
            if (SUCCEEDED(info->GetRefTypeOfImplType(kOtherSide, &reference)))
                info->GetRefTypeInfo(reference, &other);
            found.push_back(DescribeType(other ? other.Get() : info.Get()));
        }
        return found;
    }();
    return types;
}

}  // namespace kavrel::tests
