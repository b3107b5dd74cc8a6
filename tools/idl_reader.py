"""Reads the parts of KavrelCE.idl that documentation is made of.

It understands that file's own style, not the language: one attribute list before each declaration,
no nested types. What it does not understand is an error, never left out.
"""

import re
from dataclasses import dataclass, field

# An attribute list; help texts may hold brackets.
ATTRIBUTES = r'\[(?P<attributes>(?:"[^"]*"|[^\]"])*)\]\s*'
ENUM = re.compile(r"typedef\s*" + ATTRIBUTES + r"enum\s+(?P<name>\w+)\s*\{(?P<body>.*?)\}", re.DOTALL)
INTERFACE = re.compile(
    ATTRIBUTES + r"(?P<kind>interface|dispinterface)\s+(?P<name>\w+)[^;{]*\{(?P<body>.*?)\};", re.DOTALL
)
COCLASS = re.compile(ATTRIBUTES + r"coclass\s+(?P<name>\w+)\s*\{(?P<body>.*?)\};", re.DOTALL)
CONSTANT = re.compile(r"(?P<name>\w+)\s*=\s*(?P<value>-?\d+)\s*,?\s*//\s*(?P<remark>[^\n]+)")
MEMBER = re.compile(
    r"(?P<remark>(?:[ \t]*///[^\n]*\n)*)\s*"
    + ATTRIBUTES
    + r"(?:HRESULT|void)\s+(?P<name>\w+)\((?P<parameters>.*?)\);",
    re.DOTALL,
)
PARAMETER = re.compile(r"\[([^\]]*)\]\s*(VARIANT|IUnknown)\s*(\**)\s*(\w+)")
PLAIN_COMMENT = re.compile(r"(?<!/)//(?!/)[^\n]*")

KINDS = {"propget": "get", "propput": "put", "propputref": "put by reference"}


class IdlError(Exception):
    pass


@dataclass
class Constant:
    name: str
    value: int
    remark: str


@dataclass
class Enumeration:
    name: str
    help: str
    constants: list


@dataclass
class Member:
    name: str
    dispid: int
    kind: str  # "method", or one of KINDS
    help: str
    remark: str
    parameters: list  # (attributes, name), the result left out
    has_result: bool
    is_restricted: bool


@dataclass
class Interface:
    name: str
    help: str
    members: list = field(default_factory=list)


@dataclass
class Class:
    name: str
    help: str
    is_creatable: bool
    interface: str
    events: str | None


def help_of(attributes, name):
    found = re.search(r'helpstring\("([^"]*)"\)', attributes)
    if not found or not found[1].strip():
        raise IdlError(f"{name} has no helpstring")
    return found[1]


def read_member(match, owner):
    attributes, name = match["attributes"], match["name"]
    bare = re.sub(r'helpstring\("[^"]*"\)', "", attributes)
    dispid = re.search(r"\bid\((-?\d+)\)", bare)
    if not dispid:
        raise IdlError(f"{owner}.{name} has no id")
    kinds = [text for word, text in KINDS.items() if re.search(rf"\b{word}\b", bare)]
    parameters, has_result = [], False
    for piece in filter(None, (p.strip() for p in re.split(r",(?![^\[]*\])", match["parameters"]))):
        parameter = PARAMETER.fullmatch(piece)
        if not parameter:
            raise IdlError(f"{owner}.{name}: parameter not understood: {piece}")
        if "retval" in parameter[1]:
            has_result = True
        else:
            parameters.append((parameter[1], parameter[4]))
    remark = " ".join(line.strip().lstrip("/").strip() for line in match["remark"].splitlines())
    return Member(
        name,
        int(dispid[1]),
        kinds[0] if kinds else "method",
        help_of(attributes, f"{owner}.{name}"),
        remark,
        parameters,
        has_result,
        "restricted" in bare,
    )


def read_interface(match):
    name, body = match["name"], match["body"]
    interface = Interface(name, help_of(match["attributes"], name))
    interface.members = [read_member(m, name) for m in MEMBER.finditer(PLAIN_COMMENT.sub("", body))]
    declared = len(re.findall(r"\b(?:HRESULT|void)\b", PLAIN_COMMENT.sub("", re.sub(r"///[^\n]*", "", body))))
    if declared != len(interface.members):
        raise IdlError(f"{name}: {len(interface.members)} of {declared} members understood")
    return interface


def read_enumeration(match):
    name, body = match["name"], match["body"]
    constants = [
        Constant(m["name"], int(m["value"]), m["remark"].strip()) for m in CONSTANT.finditer(body)
    ]
    if len(constants) != body.count("="):
        raise IdlError(f"{name}: a constant without a remark")
    return Enumeration(name, help_of(match["attributes"], name), constants)


def read_class(match):
    body = match["body"]
    interface = re.search(r"\[default\]\s*interface\s+(\w+)", body)
    events = re.search(r"\[default, source\]\s*dispinterface\s+(\w+)", body)
    if not interface:
        raise IdlError(f"{match['name']} has no default interface")
    return Class(
        match["name"],
        help_of(match["attributes"], match["name"]),
        "noncreatable" not in match["attributes"],
        interface[1],
        events[1] if events else None,
    )


def read(text):
    """(enumerations, interfaces by name, classes) of an IDL text."""
    text = text[text.index("{", text.index("\nlibrary ")) :]
    plain = PLAIN_COMMENT.sub("", text)
    interfaces = {i.name: i for i in map(read_interface, INTERFACE.finditer(plain))}
    classes = [read_class(m) for m in COCLASS.finditer(plain)]
    enumerations = [read_enumeration(m) for m in ENUM.finditer(text)]
    found = {
        "enum": len(enumerations),
        "(?:disp)?interface": len(interfaces),
        "coclass": len(classes),
    }
    for word, count in found.items():
        declared = len(re.findall(rf"^\s*(?:{word})\s+\w+(?:\s*:\s*\w+)?\s*$", plain, re.MULTILINE))
        if declared != count:
            raise IdlError(f"{count} of {declared} declarations of {word} understood")
    return enumerations, interfaces, classes
