#!/usr/bin/env python3
"""Fills the identities of an IDL file into registration scripts.

usage: generate_scripts.py IDL OUTDIR SCRIPT...

In each SCRIPT, @CLSID_<coclass>@, @IID_<interface>@ and @LIBID_<library>@ become the uuid that the
IDL gives that name (upper case, no braces). The result goes to OUTDIR under the script's own name,
as ASCII text without the indentation, which would only make the DLL larger. A placeholder that the IDL does not know is an error.
"""

import pathlib
import re
import sys

PREFIXES = {
    "library": "LIBID",
    "coclass": "CLSID",
    "interface": "IID",
    "dispinterface": "DIID",
}

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
DECLARATION = re.compile(
    r"\[(?P<attributes>[^\[\]]*)\]\s*(?P<kind>library|coclass|interface|dispinterface)\s+(?P<name>\w+)"
)
UUID = re.compile(r"uuid\(\s*([0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})\s*\)")
PLACEHOLDER = re.compile(r"@([A-Za-z_]\w*)@")


def read_identities(idl_text):
    """Maps names such as CLSID_Position to their uuid text."""
    identities = {}
    for match in DECLARATION.finditer(COMMENT.sub("", idl_text)):
        uuid = UUID.search(match["attributes"])
        if uuid:
            identities[f"{PREFIXES[match['kind']]}_{match['name']}"] = uuid[1].upper()
    if len(set(identities.values())) != len(identities):
        sys.exit("error: one uuid is used for two things")
    return identities


def fill_in(script, identities):
    def value(match):
        if match[1] not in identities:
            sys.exit(f"error: {script.name}: the IDL does not define {match[1]}")
        return identities[match[1]]

    return PLACEHOLDER.sub(value, script.read_text(encoding="ascii"))


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    identities = read_identities(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    out_dir = pathlib.Path(sys.argv[2])
    out_dir.mkdir(parents=True, exist_ok=True)
    for script in map(pathlib.Path, sys.argv[3:]):
        lines = fill_in(script, identities).splitlines()
        text = "\n".join(line.strip() for line in lines)
        (out_dir / script.name).write_text(text, encoding="ascii")


if __name__ == "__main__":
    main()
