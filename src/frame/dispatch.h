// IDispatch by member tables.
#pragma once

#include <oaidl.h>

#include <span>

#include "frame/member_table.h"

namespace kavrel {

// What an automation class is: its identities and its members. One constant a class.
struct ClassDescription {
    const CLSID& classId;
    const IID& interfaceId;
    const IID* eventInterfaceId;  // null for a class without events
    std::span<const Member> members;
};

// Names are compared without regard to case. Names of arguments, which hosts rarely ask for, are
// looked up in the type library.
HRESULT GetMemberIds(const ClassDescription& description, LPOLESTR* names, UINT count, LCID locale,
                     DISPID* ids);

// A late-bound call on `self`, which is the object's default interface.
// - Arguments come reversed; in arguments may be omitted from the end and read as missing.
// - Out arguments are variants by reference, or references to a simple value of another type, into
//   which the result is coerced.
// - A member that is method and property to some hosts answers to either flag.
// - Arguments by name stand before the others; a name twice, or none of the member's, is
//   DISP_E_PARAMNOTFOUND.
// A failing member gives DISP_E_EXCEPTION, with `exception` filled from the error object.
HRESULT InvokeMember(const ClassDescription& description, IDispatch* self, DISPID id,
                     REFIID reserved, LCID locale, WORD kinds, DISPPARAMS* parameters,
                     VARIANT* result, EXCEPINFO* exception, UINT* argumentError);

}  // namespace kavrel
