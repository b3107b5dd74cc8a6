// Reporting a failure to the caller: an error object and a failure code.
#pragma once

#include <oaidl.h>

#include <string_view>

#include "base/error_slot.h"

namespace kavrel {

// Installs an error object for the calling thread: the interface as GUID, the message as
// description, and as source the class's description as registered ("Position Class"); none for a
// class that is not registered. Returns `failure`, or DISP_E_EXCEPTION when that is 0.
HRESULT ReportError(REFCLSID classId, std::string_view message, REFIID interfaceId,
                    HRESULT failure);

// The same with a message from the module's string table; "Unknown Error" when it holds no such
// string. A failure of 0 becomes 0x80040000 plus the number.
HRESULT ReportError(REFCLSID classId, UINT messageResource, REFIID interfaceId, HRESULT failure);

// The check after each call: success while the slot is clear, else the slot's error is reported
// with the failure code 0x80040000 | code.
HRESULT CheckError(const ErrorSlot& error, REFCLSID classId, REFIID interfaceId);

}  // namespace kavrel
