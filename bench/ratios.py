#!/usr/bin/env python3
"""Prints a benchmark run as a table of ratios: each subject's time in the library against its time
in the other forms of the same run. The least of the repetitions counts: on a shared machine whatever
is above it is somebody else's time.

Usage: ratios.py RESULTS.json
"""
import collections
import json
import sys


def milliseconds(value):
    return f"{value * 1e6:.0f} ns" if value < 0.001 else f"{value:.1f} ms"


def main(path):
    with open(path) as file:
        results = json.load(file)
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    for run in results["benchmarks"]:
        if run["run_type"] != "iteration" or "error_occurred" in run:
            continue
        subject, form = run["run_name"].split("/")[:2]
        unit = {"ns": 1e-6, "us": 1e-3, "ms": 1.0}[run["time_unit"]]
        times[subject][form].append(run["real_time"] * unit)
    print("| subject | time | against | its time | ratio |\n|---|---|---|---|---|")
    for subject, forms in sorted(times.items()):
        own = min(forms.pop("rastrel"))
        for form, values in forms.items():
            other = min(values)
            print(f"| {subject} | {milliseconds(own)} | {form} | {milliseconds(other)} | "
                  f"{own / other:.2f} |")
        if not forms:
            print(f"| {subject} | {milliseconds(own)} | | | |")


if __name__ == "__main__":
    main(*sys.argv[1:])
