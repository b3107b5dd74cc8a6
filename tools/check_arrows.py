#!/usr/bin/env python3
"""Checks the rules of the product's sources that no compiler checks.

- Which room includes which: never upward.
- Which headers of the platform and of the standard library are used: only those that work on a
  device that has no C++ runtime library.
- Names that a device cannot offer, or that would need such a library.
- Every room of the engine has a folder of unit tests.
"""

import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SOURCE = ROOT / "src"

ENGINE = ("base", "platform", "nmea", "geodesy", "results", "serial", "parser")

# Room -> rooms it may include, beside itself.
MAY_INCLUDE = {
    "base": (),
    "platform": ("base",),
    "nmea": ("base", "platform"),
    "geodesy": ("base", "platform"),
    "results": ("base", "platform", "nmea", "geodesy"),
    "serial": ("base", "platform"),
    "parser": ENGINE,
    "frame": ("base", "platform"),
    "automation": (*ENGINE, "frame"),
}

# Everything of the standard library that product code may include. Not here, and why:
#   iostream, sstream, locale, regex, format, cctype   locale, size
#   mutex, thread, condition_variable                  the platform room does that
#   map, set, list, deque, unordered_*                 a compiled C++ library, or an allocation each
#   cstdio                                             formatting is our own
STANDARD = set(
    """algorithm array atomic bit cassert cfloat charconv climits cmath compare concepts cstddef
    cstdint cstdlib cstring cwchar functional initializer_list iterator limits memory new numbers numeric
    optional span string string_view tuple type_traits utility variant vector""".split()
)

FORBIDDEN = [
    (r"\bthread_local\b", "no thread-local storage on a device"),
    (r"\b(throw|try|catch)\b", "no exceptions: errors are values"),
    (r"\b(dynamic_cast|typeid)\b", "no run-time type information"),
    (r"\b(to_string|to_wstring|sto[ild]|stoul|stoll|stoull|stof|strto[dfl]|atof|atoi)\b",
     "needs the C++ runtime or a locale: use base/number.h"),
    (r"\bstd::(function|shared_ptr|make_shared|weak_ptr|mutex|thread|call_once|any)\b",
     "needs the C++ runtime library"),
    (r"(?<![.>\w])(std::)?(cbrt|hypot|log1p|expm1|exp2|log2|lround|llround|round|trunc|rint"
     r"|nearbyint|remainder|asinh|acosh|atanh|sinh|cosh|tanh|fma|erf|isnan|isinf|isfinite)[fl]?\s*\(",
     "a device has only the classic mathematics"),
    (r"\b\w*printf\w*\s*\(", "formatting is our own: use base/number.h"),
]  # fmt: skip

INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^>"]+)[>"]')
COMMENT_OR_TEXT = re.compile(
    r'//[^\n]*|/\*.*?\*/|R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.DOTALL
)


def without_comments_and_texts(source):
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group())

    # Digit separators would open a character literal.
    return COMMENT_OR_TEXT.sub(blank, re.sub(r"(?<=[0-9A-Fa-f])'(?=[0-9A-Fa-f])", "_", source))


def include_fault(path, bracket, header):
    """What is wrong with this include in this file, or None."""
    room = path.parts[0]
    on_windows = room in ("frame", "automation") or path.parts[:2] == ("platform", "win32")
    on_host = path.parts[:2] == ("platform", "host")
    if bracket == '"':
        target = header.split("/")[0]
        if target not in MAY_INCLUDE:
            return None if on_windows else "an engine header is included by its path from src"
        if target != room and target not in MAY_INCLUDE[room]:
            allowed = ", ".join(MAY_INCLUDE[room]) or "no other room"
            return f"an arrow upward: {room} may include {allowed}"
        if header.startswith("platform/win32/") and not on_windows:
            return "the engine does not know the platform's implementation"
        if header.startswith("platform/host/") and not on_host:
            return "the build machine's stand-ins are for tests only"
        return None
    if header in STANDARD or on_host:
        return None
    if on_windows and header.endswith(".h"):
        return None
    return "not a header that product code may use (tools/check_arrows.py lists those)"


def file_faults(path):
    relative = path.relative_to(SOURCE)
    source = path.read_text(encoding="utf-8")
    for number, line in enumerate(source.splitlines(), 1):
        if match := INCLUDE.match(line):
            if fault := include_fault(relative, *match.groups()):
                yield number, f"#include {match[2]}: {fault}"
    if path.suffix == ".h" and "#pragma once" not in source:
        yield 1, "a header begins with #pragma once"
    if relative.parts[:2] == ("platform", "host"):
        return
    code = without_comments_and_texts(source)
    for pattern, reason in FORBIDDEN:
        for match in re.finditer(pattern, code):
            yield code.count("\n", 0, match.start()) + 1, f"{match.group().strip('( ')}: {reason}"


def main():
    files = [p for p in sorted(SOURCE.rglob("*")) if p.suffix in (".h", ".cpp")]
    unknown = {p.relative_to(SOURCE).parts[0] for p in files} - set(MAY_INCLUDE)
    faults = [f"src/{room}: a room that tools/check_arrows.py does not know" for room in unknown]
    for room in ENGINE:
        has_sources = any((SOURCE / room).rglob("*.cpp"))
        if has_sources and not (ROOT / "tests" / "unit" / room / "CMakeLists.txt").exists():
            faults.append(f"tests/unit/{room}: the room has no unit tests")
    for path in files:
        if path.relative_to(SOURCE).parts[0] not in unknown:
            name = path.relative_to(SOURCE.parent)
            faults += [f"{name}:{line}: {text}" for line, text in file_faults(path)]
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"check_arrows: {len(files)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
