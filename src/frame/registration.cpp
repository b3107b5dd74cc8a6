#include "frame/registration.h"

#include <algorithm>
#include <string_view>

#include "frame/module.h"
#include "frame/object_map.h"
#include "frame/registration_script.h"
#include "frame/registry_editor.h"
#include "frame/type_library.h"
#include "platform/win32/device.h"

namespace kavrel {
namespace {

constexpr const wchar_t* kScriptResourceType = L"REGISTRY";

// The text of an embedded script; empty when the module does not hold it.
std::string_view ScriptText(unsigned resource) {
    HINSTANCE const module = ModuleInstance();
    HRSRC const found = FindResourceW(module, MAKEINTRESOURCEW(resource), kScriptResourceType);
    if (found == nullptr) return {};
    HGLOBAL const loaded = LoadResource(module, found);
    const void* const text = loaded != nullptr ? ResourceData(loaded) : nullptr;
    if (text == nullptr) return {};
    return {static_cast<const char*>(text), SizeofResource(module, found)};
}

HRESULT RunScript(unsigned resource, ScriptMode mode) {
    const ModulePath path = PathOfModule(ModuleInstance());
    ClassesRootEditor editor(path.text);
    // The macro looks at its argument more than once.
    const std::uint32_t error = RunRegistrationScript(ScriptText(resource), mode, editor);
    return HRESULT_FROM_WIN32(error);
}

// The name under which installers count the users of this module: the directory of the operating
// system's core library and the module's file name.
ModulePath UsageName() {
    constexpr std::wstring_view kFileName = L"KavrelCE.dll";
    ModulePath name = PathOfModule(GetModuleHandleW(kCoreLibrary));
    const unsigned start = std::min<unsigned>(DirectoryLength(name), MAX_PATH - kFileName.size());
    *std::copy(kFileName.begin(), kFileName.end(), name.text + start) = L'\0';
    return name;
}

// The installer's count; 0 when there is none. It stands under the classes root, where installers
// of devices put it.
DWORD UsageCount() {
    const OpenKey key(HKEY_CLASSES_ROOT, L"Software\\Apps\\Shared");
    if (!key.IsOpen()) return 0;

    DWORD count = 0;
    DWORD type = 0;
    DWORD size = sizeof(count);
    const LSTATUS status = RegQueryValueExW(key.get(), UsageName().text, nullptr, &type,
                                            reinterpret_cast<BYTE*>(&count), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD ? count : 0;
}

}  // namespace

HRESULT RegisterServer() {
    for (const ObjectMapEntry& entry : ObjectMap()) {
        const HRESULT result = RunScript(entry.scriptResource, ScriptMode::Register);
        if (FAILED(result)) return result;
    }
    return RegisterTypeLibrary();
}

void UnregisterServerWhenLastUser() {
    if (UsageCount() != 1) return;
    for (const ObjectMapEntry& entry : ObjectMap()) {
        RunScript(entry.scriptResource, ScriptMode::Unregister);
    }
    UnregisterTypeLibrary();
}

}  // namespace kavrel
