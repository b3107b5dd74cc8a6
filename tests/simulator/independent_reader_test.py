#!/usr/bin/env python3
"""Has an independent NMEA reader, gpsd's gpsdecode, read what the receiver simulator writes.

usage: independent_reader_test.py RECEIVER_SIMULATOR

The simulator's sentences come from the library's own generation. Every fix that gpsdecode reports
must carry the values written in the sentences of its second, and of sentences with wrong checksums
it must report none.
"""

import json
import subprocess
import sys

COUNT = 40


def simulate(simulator, *options):
    command = [simulator, "--count", str(COUNT), "--constellations", "3", "--seed", "7", *options]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def decode(text):
    done = subprocess.run(["gpsdecode"], input=text, check=True, capture_output=True, text=True)
    return [json.loads(line) for line in done.stdout.splitlines() if line.startswith("{")]


def degrees(text, hemisphere):
    whole = text.index(".") - 2
    value = float(text[:whole]) + float(text[whole:]) / 60
    return -value if hemisphere in "SW" else value


def written_values(text):
    """By time of day: latitude, longitude, altitude (GGA) and speed in metres a second (RMC)."""
    values = {}
    for line in text.splitlines():
        fields = line.split("*")[0].split(",")
        if fields[0].endswith("GGA"):
            at = values.setdefault(fields[1][:6], {})
            at["lat"] = degrees(fields[2], fields[3])
            at["lon"] = degrees(fields[4], fields[5])
            at["altMSL"] = float(fields[9])
        elif fields[0].endswith("RMC"):
            values.setdefault(fields[1][:6], {})["speed"] = float(fields[7]) * 1852 / 3600
    return values


TOLERANCES = {"lat": 1e-7, "lon": 1e-7, "altMSL": 0.006, "speed": 0.006}


def main():
    simulator = sys.argv[1]
    text = simulate(simulator)
    reports = decode(text)
    written = written_values(text)

    fixes = [r for r in reports if r["class"] == "TPV" and r.get("mode", 0) >= 2]
    skies = [r for r in reports if r["class"] == "SKY" and "satellites" in r]
    faults = []
    for fix in fixes:
        time_of_day = fix["time"][11:19].replace(":", "")
        for name, tolerance in TOLERANCES.items():
            if name in fix and abs(fix[name] - written[time_of_day][name]) > tolerance:
                faults.append(f"{time_of_day} {name}: wrote {written[time_of_day][name]}, read {fix[name]}")
    if len(fixes) < COUNT - 2:
        faults.append(f"of {COUNT} fixes gpsdecode reports {len(fixes)}")
    if not skies or max(len(sky["satellites"]) for sky in skies) < 12:
        faults.append("gpsdecode reports no sky of three constellations")

    broken = decode(simulate(simulator, "--bad-checksum", "1"))
    if any(report["class"] in ("TPV", "SKY") for report in broken):
        faults.append("gpsdecode accepts sentences with wrong checksums")

    for fault in faults:
        print(fault)
    print(f"{len(fixes)} fixes and {len(skies)} skies compared, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
