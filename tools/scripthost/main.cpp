// scripthost SCRIPT [ARGUMENTS...]: runs a VBScript (.vbs) or JScript (.js) file.
//
// It adds what the command-line host of the platform lacks: events reach the script, Sleep
// dispatches messages, and a script error is told with its line and ends in an exit code.
//
// Exit codes: 0 or that of WScript.Quit; 2 the script cannot be started; 3 a script error or a
// faulty event; 99 an unhandled exception.

#include <activscp.h>
#include <windows.h>
#include <wrl/client.h>

#include <optional>
#include <string>
#include <vector>

#include "event_sink.h"
#include "script_site.h"
#include "text.h"
#include "wscript_object.h"

using Microsoft::WRL::ComPtr;

namespace scripthost {
namespace {

constexpr int kExitNotStarted = 2;
constexpr int kExitScriptError = 3;
constexpr UINT kExitUnhandledException = 99;

LONG WINAPI OnUnhandledException(EXCEPTION_POINTERS* exception) {
    PrintLine(stderr, L"UNHANDLED EXCEPTION 0x" + ToHex(exception->ExceptionRecord->ExceptionCode));
    EndProcess(kExitUnhandledException);
}

int NotStarted(const std::wstring& message, HRESULT status) {
    PrintLine(stderr, message + L": 0x" + ToHex(static_cast<DWORD>(status)));
    return kExitNotStarted;
}

HRESULT CreateEngine(const std::wstring& path, IActiveScript** engine) {
    CLSID id = {};
    const HRESULT result = CLSIDFromProgID(path.ends_with(L".js") ? L"JScript" : L"VBScript", &id);
    if (FAILED(result)) return result;
    return CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                            reinterpret_cast<void**>(engine));
}

HRESULT StartEngine(IActiveScript* engine, ScriptSite* site, IActiveScriptParse** parser) {
    HRESULT result =
        engine->QueryInterface(__uuidof(IActiveScriptParse), reinterpret_cast<void**>(parser));
    if (SUCCEEDED(result)) result = engine->SetScriptSite(site);
    if (SUCCEEDED(result)) result = (*parser)->InitNew();
    if (SUCCEEDED(result)) result = engine->AddNamedItem(L"WScript", SCRIPTITEM_ISVISIBLE);
    if (SUCCEEDED(result)) result = engine->SetScriptState(SCRIPTSTATE_CONNECTED);
    return result;
}

int Run(const std::wstring& path, std::vector<std::wstring> arguments) {
    const std::optional<std::wstring> text = ReadTextFile(path);
    if (!text) return NotStarted(L"cannot read " + path, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    ComPtr<IActiveScript> engine;
    HRESULT result = CreateEngine(path, &engine);
    if (FAILED(result)) return NotStarted(L"no script engine", result);

    ComPtr<ScriptSite> site;
    site.Attach(new ScriptSite());
    EventSinks sinks(engine.Get(), site.Get());
    ComPtr<WScriptObject> wscript;
    wscript.Attach(new WScriptObject(std::move(arguments), &sinks));
    site->SetNamedItem(wscript.Get());
    ComPtr<IActiveScriptParse> parser;
    result = StartEngine(engine.Get(), site.Get(), &parser);
    if (FAILED(result)) return NotStarted(L"cannot start the script engine", result);

    result = parser->ParseScriptText(text->c_str(), nullptr, nullptr, nullptr, 0, 0,
                                     SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
    if (FAILED(result) && !site->failed()) {
        site->ReportFailure(L"SCRIPT ERROR 0x" + ToHex(static_cast<DWORD>(result)));
    }
    sinks.DisconnectAll();
    engine->Close();
    return site->failed() ? kExitScriptError : 0;
}

}  // namespace
}  // namespace scripthost

int wmain(int count, wchar_t** values) {
    SetUnhandledExceptionFilter(scripthost::OnUnhandledException);
    if (count < 2) {
        scripthost::PrintLine(stderr, L"usage: scripthost SCRIPT [ARGUMENTS...]");
        return scripthost::kExitNotStarted;
    }
    CoInitialize(nullptr);
    const int exitCode =
        scripthost::Run(values[1], std::vector<std::wstring>(values + 2, values + count));
    CoUninitialize();
    return exitCode;
}
