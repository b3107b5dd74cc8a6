// Calls of members: late-bound as script hosts do it, by the type information's own Invoke, and
// through the vtable as compiled clients do it. All give the same CallResult, for comparison.
#pragma once

#include <oaidl.h>

#include <optional>
#include <string>
#include <vector>

#include "automation/support/var.h"
#include "automation/typelib_dump.h"

namespace kavrel::tests {

// An error object or an EXCEPINFO.
struct ErrorReport {
    std::optional<std::wstring> source;
    std::wstring description;
    IID interfaceId = IID_NULL;  // not told by an EXCEPINFO
};

// Takes the calling thread's error object away; nothing when there is none.
std::optional<ErrorReport> TakeErrorObject();

struct CallResult {
    HRESULT status = S_OK;   // what the call returned
    HRESULT failure = S_OK;  // the member's own failure: behind DISP_E_EXCEPTION its scode
    std::optional<ErrorReport> error;
    Var value;
    UINT argumentError = 0xFFFF;  // 0xFFFF: not told
};

// Arguments of a late-bound call, in their order. With `names`, the last arguments are named ones.
struct Arguments {
    Vars values;
    std::vector<DISPID> names;
};

// IDispatch::Invoke of the object.
CallResult InvokeById(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments);

// ITypeInfo::Invoke of the type information that the object gives.
CallResult InvokeByTypeInfo(IDispatch* object, DISPID id, WORD kinds, const Arguments& arguments);

// The vtable's place of the member of the object's dual interface. Arguments that are not given are
// passed as missing ones, and as a place for a result one that holds something.
CallResult CallVtable(IDispatch* object, const TypeDescription& type,
                      const MemberDescription& member, const Vars& arguments);

// By name, as a script does it. An unknown name is a failure like any other.
CallResult Call(IDispatch* object, const wchar_t* name, const Vars& arguments = {});
CallResult Get(IDispatch* object, const wchar_t* name, const Vars& arguments = {});
CallResult Put(IDispatch* object, const wchar_t* name, const Var& value);

// The dispid of a name; DISPID_UNKNOWN when the object does not know it.
DISPID IdOf(IDispatch* object, const wchar_t* name);

// What the DLL's type library says of an interface.
const TypeDescription& InterfaceNamed(const std::string& name);

}  // namespace kavrel::tests
