"""The names of the platform that the DLL may import, read from src/platform/win32/imports.

A line is `Name@bytes  ; home  remark`. In a device library's file (coredll, ole32, oleaut32) `home`
is the desktop DLL that has the same function, with a `*` when it behaves a little differently
there, or `-` when only the device has it. In desktop.def, which lists what desktop builds may use
beyond that, `home` is the DLL itself.
"""

from dataclasses import dataclass
from pathlib import Path

DEVICE_LIBRARIES = ("coredll", "ole32", "oleaut32")


@dataclass(frozen=True)
class PlatformName:
    """One function: its plain name, its name with the 32-bit argument size, where it lives."""

    name: str
    decorated: str
    device: str  # "" when the device does not have it
    desktop: str  # "" when the desktop does not have it
    same: bool  # the desktop's function can stand in for the device's as it is


def _read_file(path):
    device = path.stem if path.stem in DEVICE_LIBRARIES else ""
    for number, line in enumerate(path.read_text(encoding="ascii").splitlines(), 1):
        code, _, comment = line.partition(";")
        code = code.strip()
        if not code or code.split()[0] in ("LIBRARY", "EXPORTS"):
            continue
        home = (comment.split() or [""])[0]
        if not home:
            raise SystemExit(f"{path}:{number}: {code}: say which desktop DLL has it, or '-'")
        desktop = "" if home == "-" else home.rstrip("*")
        yield PlatformName(code.partition("@")[0], code, device, desktop, home == desktop)


def read_platform_names(folder):
    """All names of the folder's files, device libraries first."""
    folder = Path(folder)
    names = []
    for stem in (*DEVICE_LIBRARIES, "desktop"):
        names.extend(_read_file(folder / f"{stem}.def"))
    return names


def names_by_library(folder, rules):
    """For rules "device" or "desktop": DLL name without extension -> list of PlatformName."""
    libraries = {}
    for name in read_platform_names(folder):
        home = name.device if rules == "device" else name.desktop
        if home:
            libraries.setdefault(home, []).append(name)
    return libraries
