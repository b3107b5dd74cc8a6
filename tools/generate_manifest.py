#!/usr/bin/env python3
"""Writes the side-by-side assembly manifest of the DLL.

usage: generate_manifest.py IDL SCRIPTFOLDER VERSION ARCHITECTURE OUTPUT

With it beside the DLL, a host that names the assembly in its own manifest creates the classes
without their registration. Identities and interfaces come from the IDL; names, descriptions and
threading models from the registration scripts of the classes that can be created.
"""

import re
import sys
from pathlib import Path
from xml.sax.saxutils import quoteattr

import generate_scripts
import idl_reader

# The platform's own marshalers: of dual interfaces and of dispinterfaces.
DUAL_PROXY = "{00020424-0000-0000-C000-000000000046}"
DISPATCH_PROXY = "{00020420-0000-0000-C000-000000000046}"


def only(pattern, text, name):
    found = re.findall(pattern, text)
    if len(found) != 1:
        sys.exit(f"error: {name}: {len(found)} matches of {pattern}")
    return found[0]


def element(name, attributes, *children, indent=1):
    """An element with its attributes in order; those that are None are left out."""
    pad = "  " * indent
    text = "".join(f" {k}={quoteattr(v)}" for k, v in attributes.items() if v is not None)
    if not children:
        return [f"{pad}<{name}{text}/>"]
    return [f"{pad}<{name}{text}>", *(line for child in children for line in child), f"{pad}</{name}>"]


def class_element(name, script, library_id):
    """What a registration script says, in the manifest's words."""
    class_id = only(r"ForceRemove (\{[0-9A-F-]+\})", script, name)
    prog_id = only(r"(?<!Independent)ProgID = s '([^']+)'", script, name)
    general = only(r"VersionIndependentProgID = s '([^']+)'", script, name)
    model = re.findall(r"ThreadingModel = s '([^']+)'", script)
    attributes = {
        "clsid": class_id,
        "progid": prog_id,
        # Without one the object lives in the host's first apartment, as a registered one does.
        "threadingModel": model[0] if model else None,
        "tlbid": library_id,
        "description": only(rf"ForceRemove \{class_id} = s '([^']+)'", script, name),
    }
    further = [f"      <progid>{general}</progid>"]
    return element("comClass", attributes, further, indent=2)


def manifest(idl, scripts, version, architecture):
    text = idl.read_text(encoding="utf-8")
    ids = generate_scripts.read_identities(text)
    library_id = f"{{{ids['LIBID_KavrelCE']}}}"
    library_version = only(r"version\((\d+\.\d+)\)", text, idl.name)
    _, interfaces, classes = idl_reader.read(text)

    inside = [
        class_element(c.name, generate_scripts.fill_in(scripts / f"{c.name}.rgs", ids), library_id)
        for c in classes
        if c.is_creatable
    ]
    inside.append(
        element(
            "typelib",
            {"tlbid": library_id, "version": library_version, "helpdir": "", "flags": "HASDISKIMAGE"},
            indent=2,
        )
    )
    identity = {
        "type": "win32",
        "name": "KavrelCE.SideBySide",
        "version": f"{version}.0",
        "processorArchitecture": architecture,
    }
    lines = [
        '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>',
        '<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">',
        *element("assemblyIdentity", identity),
        *element("file", {"name": "KavrelCE.dll"}, *inside),
    ]
    for name in interfaces:
        is_dual = f"IID_{name}" in ids
        proxy = {
            "name": name,
            "iid": f"{{{ids['IID_' + name if is_dual else 'DIID_' + name]}}}",
            "proxyStubClsid32": DUAL_PROXY if is_dual else DISPATCH_PROXY,
            "baseInterface": "{00020400-0000-0000-C000-000000000046}",
            "tlbid": library_id,
        }
        lines += element("comInterfaceExternalProxyStub", proxy)
    return "\n".join([*lines, "</assembly>", ""])


def main():
    if len(sys.argv) != 6:
        sys.exit(__doc__)
    idl, scripts, version, architecture, output = sys.argv[1:]
    Path(output).write_text(manifest(Path(idl), Path(scripts), version, architecture), encoding="utf-8")


if __name__ == "__main__":
    main()
