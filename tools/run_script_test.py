#!/usr/bin/env python3
"""Runs one script under Wine and judges it by its output.

    run_script_test.py [--receiver FILE] [--last LINE] [--expected FILE]
                       <prefix folder> <script> <host> [host option]... -- [script argument]...

The hosts end with exit code 0 even on an unhandled script error, so a script passes only when the
last line it prints is "SCRIPT OK", or that of --last. With --expected, or when <script without
extension>.expected exists beside it, the whole output must equal that file.

With --receiver, a receiver on a serial port says that file's text, one fix each 20 ms; the port's
number replaces "{port}" in the script's arguments.
"""

import difflib
import subprocess
import sys
from pathlib import Path

MARKER = "SCRIPT OK"
TIMEOUT_SECONDS = 90


def main():
    given = sys.argv[1:]
    options = {"--receiver": None, "--last": MARKER, "--expected": None}
    while len(given) > 1 and given[0] in options:
        options[given[0]] = given[1]
        del given[:2]
    receiver = options["--receiver"] and str(Path(options["--receiver"]).resolve())
    marker = options["--last"]
    if len(given) < 4 or "--" not in given:
        return __doc__
    prefix, script = str(Path(given[0]).resolve()), Path(given[1])
    split = given.index("--")
    host, arguments = given[2:split], given[split + 1 :]

    tools = Path(__file__).parent
    runner = [tools / "run-wine", prefix]
    if receiver:
        runner = [tools / "run_with_ports.py", "--receiver", receiver, "--every", "20", prefix]
    # A relative name: the hosts would take a path's leading slash for an option.
    command = [*runner, *host, script.name, *arguments]
    done = subprocess.run(
        command, cwd=script.parent, capture_output=True, timeout=TIMEOUT_SECONDS, check=False
    )
    output = done.stdout.decode("utf-8", "replace").replace("\r\n", "\n")
    errors = done.stderr.decode("utf-8", "replace").replace("\r\n", "\n")
    print(output, end="")
    print(errors, end="", file=sys.stderr)

    if done.returncode:
        return f"{script.name}: exit code {done.returncode}"
    lines = output.splitlines()
    if not lines or lines[-1] != marker:
        return f"{script.name}: the last line is not {marker!r}: the script stopped early"
    expected = Path(options["--expected"] or script.with_suffix(".expected"))
    if (options["--expected"] or expected.exists()) and output != (wanted := expected.read_text(encoding="utf-8")):
        return "".join(
            difflib.unified_diff(
                wanted.splitlines(True), output.splitlines(True), str(expected), "output"
            )
        )
    return None


if __name__ == "__main__":
    sys.exit(main())
