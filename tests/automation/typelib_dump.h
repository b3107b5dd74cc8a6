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
    // Names of the flags, separated by blanks.
    std::string flags;
    // Place in the vtable, or -1 for a member of a dispinterface.
    int slot = -1;
    // Parameters in order, each as "[in optional] VARIANT Name".
    std::vector<std::string> parameters;
    std::string returnType;
    std::string helpString;
};

// One constant of an enumeration.
struct ConstantDescription {
    std::string name;
    long value = 0;
};

// One type of a library. Of a dual interface this is the vtable side.
struct TypeDescription {
    // "enum", "dual interface", "interface", "dispinterface", "coclass" or "other".
    std::string kind;
    std::string name;
    std::string guid;
    WORD flags = 0;
    std::string helpString;
    // Interfaces that it derives from or that the class implements, as "[default] IName".
    std::vector<std::string> implements;
    std::vector<MemberDescription> members;
    std::vector<ConstantDescription> constants;
};

// A whole library. It says nothing that depends on the width of the process, so that the 32-bit
// and the 64-bit library describe themselves alike.
struct LibraryDescription {
    // Name, identity, version, locale and help string.
    std::string heading;
    std::vector<TypeDescription> types;
};

// Reads everything that `library` says; what it cannot read stays out.
LibraryDescription DescribeTypeLibrary(ITypeLib* library);

// Canonical text, one line per type, member and constant, in the order of the library.
std::string DumpTypeLibrary(const LibraryDescription& library);

}  // namespace kavrel::tests
