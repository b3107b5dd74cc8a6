#!/usr/bin/env python3
"""Writes the export definition of the stand-in coredll.dll that the device flavour's tests use."""

import argparse
from pathlib import Path

from platform_names import read_platform_names


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("names", type=Path, help="folder of the .def files")
    parser.add_argument("out", type=Path)
    arguments = parser.parse_args()

    lines = ["LIBRARY coredll.dll", "EXPORTS"]
    for name in read_platform_names(arguments.names):
        if name.device == "coredll":
            # What only the device has in this shape, the stand-in itself defines.
            target = f"{name.desktop}.{name.name}" if name.same else f"Device{name.name}"
            lines.append(f"{name.name} = {target}")
    arguments.out.write_text("\n".join(lines) + "\n", encoding="ascii")


if __name__ == "__main__":
    main()
