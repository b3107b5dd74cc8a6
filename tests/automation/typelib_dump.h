// What the type library in the DLL says, as data for tests that walk its members and as text to
// compare.
#pragma once

#include <oaidl.h>
#include <windows.h>

#include <string>
#include <vector>

namespace kavrel::tests {

// One member function of an interface as its type library describes it.
struct MemberDescription {
    std::string name;
    MEMBERID id = 0;
    INVOKEKIND kind = INVOKE_FUNC;
    // Place in the vtable, or -1 for a member of a dispinterface.
    int slot = -1;
    // Parameters in order, each as "[in optional] VARIANT Name".
    std::vector<std::string> parameters;
};

// One type of a library. Of a dual interface this is the vtable side.
struct TypeDescription {
    std::string name;
    GUID id = GUID_NULL;
    std::vector<MemberDescription> members;
    // All of it: a line for the type and one for each interface, member and constant.
    std::string text;
};

// The library itself, without members, and all its types. Read once. It says nothing that depends
// on the width of the process, so that the 32-bit and the 64-bit library describe themselves alike.
const std::vector<TypeDescription>& DescribeTypeLibrary();

}  // namespace kavrel::tests
