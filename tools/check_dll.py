#!/usr/bin/env python3
"""Reports a DLL's size, sections and imports, and fails when it breaks the product's rules.

Rules: it imports only names listed in src/platform/win32/imports, and runs no code to initialise
statics (its tables are constant).
"""

import argparse
import struct
import subprocess
import sys
from pathlib import Path

from platform_names import names_by_library

PE32_PLUS = 0x20B
SUBSYSTEMS = {2: "Windows", 3: "Windows console", 9: "Windows CE"}


class Image:
    """What this check needs of a PE file: sections, subsystem, imported names."""

    def __init__(self, data):
        self._data = data
        (header,) = struct.unpack_from("<I", data, 0x3C)
        if data[header : header + 4] != b"PE\0\0":
            raise SystemExit("not a PE file")
        count, optional_size = struct.unpack_from("<H12xH", data, header + 6)
        optional = header + 24
        self._wide = struct.unpack_from("<H", data, optional)[0] == PE32_PLUS
        self.subsystem = struct.unpack_from("<H", data, optional + 68)[0]
        self._directories = optional + (112 if self._wide else 96)
        self.sections = []  # (name, address, size in memory, offset, size in file)
        for i in range(count):
            at = optional + optional_size + 40 * i
            name = data[at : at + 8].rstrip(b"\0").decode("ascii", "replace")
            size, address, file_size, offset = struct.unpack_from("<4I", data, at + 8)
            self.sections.append((name, address, size, offset, file_size))

    def _offset(self, address):
        for _, start, size, offset, file_size in self.sections:
            if start <= address < start + max(size, file_size):
                return offset + address - start
        raise SystemExit(f"address {address:#x} is in no section")

    def _text(self, address):
        at = self._offset(address)
        return self._data[at : self._data.index(b"\0", at)].decode("ascii")

    def imports(self):
        """DLL name in lower case without extension -> imported names, in table order."""
        (table,) = struct.unpack_from("<I", self._data, self._directories + 8)
        found = {}
        at = self._offset(table) if table else None
        while at is not None:
            lookup, _, _, name, thunks = struct.unpack_from("<5I", self._data, at)
            if not name:
                break
            library = self._text(name).lower().removesuffix(".dll")
            found[library] = list(self._thunk_names(lookup or thunks))
            at += 20
        return found

    def _thunk_names(self, address):
        size, letter = (8, "Q") if self._wide else (4, "I")
        at = self._offset(address)
        while True:
            (value,) = struct.unpack_from("<" + letter, self._data, at)
            if not value:
                return
            if value >> (size * 8 - 1):
                yield f"#{value & 0xFFFF}"  # by ordinal: never allowed, so never in a list
            else:
                yield self._text((value & 0x7FFFFFFF) + 2)
            at += size


def dynamic_initialisers(path):
    """Names of compiler-made functions that initialise statics, from the unstripped DLL."""
    symbols = subprocess.run(
        ["x86_64-w64-mingw32-nm", "-C", str(path)], check=True, capture_output=True, text=True
    ).stdout
    marks = ("global constructors keyed to", "_GLOBAL__sub_I_", "__static_initialization_and")
    return [line.split(None, 2)[2] for line in symbols.splitlines() if any(m in line for m in marks)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--imports", type=Path, required=True)
    parser.add_argument("--rules", choices=("device", "desktop"), required=True)
    parser.add_argument("--symbols", type=Path, required=True, help="the unstripped DLL")
    parser.add_argument("--report", type=Path, help="file that keeps the report, too")
    parser.add_argument("dll", type=Path)
    arguments = parser.parse_args()

    image = Image(arguments.dll.read_bytes())
    kind = SUBSYSTEMS.get(image.subsystem, str(image.subsystem))
    size = arguments.dll.stat().st_size
    report = [f"{arguments.dll.name}: {size} bytes ({size / 1024:.1f} KB) stripped, {kind}"]
    report.append("  sections: " + ", ".join(f"{s[0]} {s[2]}" for s in image.sections))

    allowed = names_by_library(arguments.imports, arguments.rules)
    faults = []
    for library, names in sorted(image.imports().items()):
        report.append(f"  {library}.dll ({len(names)}): {' '.join(sorted(names))}")
        known = {n.name for n in allowed.get(library, [])}
        faults += [f"imports {library}.dll!{name}" for name in names if name not in known]
    faults += [f"initialises statics by code: {n}" for n in dynamic_initialisers(arguments.symbols)]
    print("\n".join(report))
    if arguments.report:
        arguments.report.write_text("\n".join(report) + "\n", encoding="ascii")
    for fault in faults:
        print(f"error: {arguments.dll.name} {fault} (see docs/device-runtime.md)", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
