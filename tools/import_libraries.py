#!/usr/bin/env python3
"""Makes one import library per system DLL that offers exactly the names the DLL may import."""

import argparse
import subprocess
from pathlib import Path

from platform_names import names_by_library


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--rules", choices=("device", "desktop"), required=True)
    parser.add_argument("--bits", choices=("32", "64"), required=True)
    parser.add_argument("--dlltool", required=True)
    parser.add_argument("names", type=Path, help="folder of the .def files")
    parser.add_argument("out", type=Path)
    arguments = parser.parse_args()

    arguments.out.mkdir(parents=True, exist_ok=True)
    for library, names in names_by_library(arguments.names, arguments.rules).items():
        definition = arguments.out / f"{library}.def"
        lines = [f"LIBRARY {library}.dll", "EXPORTS"]
        # Only 32-bit stdcall functions carry their argument size in the symbol's name.
        lines += [n.decorated if arguments.bits == "32" else n.name for n in names]
        definition.write_text("\n".join(lines) + "\n", encoding="ascii")
        archive = arguments.out / f"lib{library}.a"
        command = [arguments.dlltool, "-k", "-d", str(definition), "-l", str(archive)]
        subprocess.run(command, check=True)


if __name__ == "__main__":
    main()
