#!/usr/bin/env python3
"""Writes the reference documentation, docs/reference, from the interface definition.

    generate_reference.py            writes the pages
    generate_reference.py --check    writes nothing; fails when a page is not up to date

A page per class, one for the events and one for the constants come from the help strings, remarks
and ids of src/frame/KavrelCE.idl; a member without a help string is an error. The page of errors is
written by hand. It is checked here against the message catalogue: each message has one row, each
number belongs to its code, and what the other pages say about errors quotes messages that exist.
"""

import re
import sys
from pathlib import Path

import idl_reader

ROOT = Path(__file__).resolve().parent.parent
IDL = ROOT / "src/frame/KavrelCE.idl"
CATALOGUE = ROOT / "src/base/messages.cpp"
PAGES = ROOT / "docs/reference"
ERRORS = "errors.md"

GENERATED = "<!-- Written by tools/generate_reference.py from src/frame/KavrelCE.idl. -->\n"
ENTRY = re.compile(r'Entry\{Message::\w+,\s*"((?:[^"\\]|\\.)*)"\}')
QUOTED = re.compile(r'"([^"]+)"')
ERROR_ROW = re.compile(r'^\| "(?P<text>[^"]+)" \| (?P<code>[^|]+) \| (?P<meaning>[^|]+) \| (?P<cure>[^|]+) \|$')
NUMBER = re.compile(r"(\d{5}), 0x([0-9A-F]{8})")


def signature(member):
    """`Parse([Sentence])`: optional arguments in brackets, those that come back with `out`."""
    parts = []
    for attributes, name in member.parameters:
        if member.kind.startswith("put"):
            continue
        if "out" in attributes:
            name = "out " + name
        parts.append(f"[{name}]" if "optional" in attributes else name)
    takes_none = not parts and member.kind != "method"
    return member.name if takes_none else f"{member.name}({', '.join(parts)})"


def with_links(text):
    """Names of enumerations and quotations of messages become links."""
    text = re.sub(r"\b(Kv[A-Z]\w+)\b", lambda m: f"[{m[1]}](constants.md#{m[1].lower()})", text)
    if "Errors:" in text:
        before, after = text.split("Errors:", 1)
        text = f"{before}[Errors]({ERRORS}):{after}"
    return text


def member_section(name, forms):
    first = forms[0]
    kinds = " and ".join(form.kind for form in forms)
    if kinds != "method":
        kinds = f"property, {kinds}"
    if first.has_result and kinds == "method":
        kinds += " with a result"
    if first.is_restricted:
        kinds += ", hidden from scripts"
    lines = [f"### {name}", "", f"`{signature(first)}`: {kinds}, dispid {first.dispid}.", ""]
    lines += [with_links(f"{first.help}."), ""]
    if first.remark:
        lines += [with_links(first.remark), ""]
    return lines


def grouped(members):
    """Members by name, in the order of the definition: a property's get and put are one."""
    groups = {}
    for member in members:
        groups.setdefault(member.name, []).append(member)
    return groups


def overview(groups):
    lines = ["| member | dispid | |", "|---|---|---|"]
    for name, forms in groups.items():
        title = signature(forms[0])
        lines.append(f"| [`{title}`](#{name.lower()}) | {forms[0].dispid} | {forms[0].help} |")
    return lines + [""]


def interface_lines(interface):
    groups = grouped(interface.members)
    lines = overview(groups)
    for name, forms in groups.items():
        lines += member_section(name, forms)
    return lines


def class_page(described, interface):
    lines = [GENERATED, f"# {described.name}", "", f"{interface.help}.", ""]
    made = "Cannot be created: it comes from events, queries and properties."
    if described.is_creatable:
        made = f"Created as `KavrelCE.{described.name}`."
    lines.append(f"{made} Default interface `{interface.name}`.")
    if described.events:
        lines[-1] += f" Its events are `{described.events}`, see [events](events.md)."
    return "\n".join([*lines, "", *interface_lines(interface)])


def event_page(interface):
    lines = [
        GENERATED,
        "# Events",
        "",
        f"{interface.help}: the dispinterface `{interface.name}`. Every argument is an object in a variant.",
        "The ids are those of the dispinterface; `EventInterval` numbers them differently",
        "([KvEventType](constants.md#kveventtype)).",
        "",
    ]
    return "\n".join(lines + interface_lines(interface))


def constants_page(enumerations):
    lines = [GENERATED, "# Constants", ""]
    lines += ["Hosts that read the type library know them by name; others write the number.", ""]
    for enumeration in enumerations:
        lines += [f"## {enumeration.name}", "", f"{enumeration.help}.", ""]
        lines += ["| value | name | |", "|---|---|---|"]
        lines += [f"| {c.value} | `{c.name}` | {c.remark} |" for c in enumeration.constants]
        lines.append("")
    return "\n".join(lines)


def index_page(classes, interfaces):
    lines = [
        GENERATED,
        "# Reference",
        "",
        "All members, events and constants of the type library, with their ids. Every argument and",
        "result is a variant; one in brackets may be left out and then reads as 0, False or an empty",
        "text. [For authors of hosts](../hosts.md) tells what surprises people.",
        "",
        "| page | |",
        "|---|---|",
    ]
    lines += [f"| [{c.name}]({c.name}.md) | {interfaces[c.interface].help} |" for c in classes]
    lines += [
        "| [Events](events.md) | What NmeaParser tells |",
        "| [Constants](constants.md) | Datums, grids, units, formats |",
        f"| [Errors]({ERRORS}) | Every message, what it means and what to do |",
        "",
    ]
    return "\n".join(lines)


def make_pages(text):
    enumerations, interfaces, classes = idl_reader.read(text)
    pages = {f"{c.name}.md": class_page(c, interfaces[c.interface]) for c in classes}
    pages["events.md"] = event_page(next(interfaces[c.events] for c in classes if c.events))
    pages["constants.md"] = constants_page(enumerations)
    pages["README.md"] = index_page(classes, interfaces)
    return pages, interfaces


def catalogue():
    return [text.replace("\\\\", "\\") for text in ENTRY.findall(CATALOGUE.read_text(encoding="utf-8"))]


def error_page_faults(messages):
    rows = []
    for line in (PAGES / ERRORS).read_text(encoding="utf-8").splitlines():
        if line.startswith('| "'):
            row = ERROR_ROW.match(line)
            if not row:
                yield f"{ERRORS}: a row without message, code, meaning and cure: {line}"
                continue
            rows.append(row["text"])
        for code, number in NUMBER.findall(line):
            if int(number, 16) != 0x80040000 | int(code):
                yield f"{ERRORS}: 0x{number} is not the number of {code}"
    for message in messages:
        if rows.count(message) != 1:
            yield f'{ERRORS}: {rows.count(message)} rows for "{message}"'
    for text in rows:
        if text not in messages:
            yield f'{ERRORS}: "{text}" is not in the catalogue'


def quotation_faults(interfaces, messages):
    for interface in interfaces.values():
        for member in interface.members:
            _, _, errors = member.remark.partition("Errors:")
            for text in QUOTED.findall(errors):
                if text not in messages:
                    yield f'{interface.name}.{member.name}: "{text}" is not in the catalogue'


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    checks_only = bool(sys.argv[1:])
    try:
        pages, interfaces = make_pages(IDL.read_text(encoding="utf-8"))
    except idl_reader.IdlError as error:
        sys.exit(f"{IDL.relative_to(ROOT)}: {error}")
    messages = catalogue()
    faults = [*error_page_faults(messages), *quotation_faults(interfaces, messages)]
    there = {path.name for path in PAGES.glob("*.md")} - {ERRORS}
    faults += [f"docs/reference/{name}: no such page is made" for name in sorted(there - set(pages))]
    for name, text in pages.items():
        path = PAGES / name
        if not checks_only:
            path.write_text(text, encoding="utf-8")
        elif not path.exists() or path.read_text(encoding="utf-8") != text:
            faults.append(f"docs/reference/{name} is not up to date: run tools/generate_reference.py")
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"reference: {len(pages)} pages, {len(messages)} messages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
