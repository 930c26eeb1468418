#!/usr/bin/env python3
"""Prints the benchmark results as ratios of the product to the plain reference.

Reads JSON files of Google Benchmark, takes the least processor time of each benchmark over its repetitions, and prints
one line per case: product, reference, ratio, and where a ratio is wanted, whether it was met.
"""

import argparse
import json
import sys

TO_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}

# Wanted speed-ups of lookups: (scheme, axes) -> {reference: ratio}; of steps: (application, scheme) -> ratio to bare.
WANTED_LOOKUP = {("Linear", axes): {"clocks": 40.0, "bare": 6.0} for axes in (3, 4, 5)}
WANTED_LOOKUP.update({
    ("Cubic", 3): {"bare": 4.0},
    ("Spline4", 3): {"bare": 4.0},
    ("Spline6", 3): {"bare": 3.0},
    ("Spline", 3): {"bare": 5.0},
})
WANTED_STEP = {("Harmonic", "Linear"): 6.0, ("Harmonic", "Cubic"): 4.0, ("WFSM", "Linear"): 8.0, ("WFSM", "Cubic"): 8.0}
WANTED_STEP.update({(machine, scheme): 5.0 for machine in ("IM", "IM_constants", "SR3", "SR4", "SR5", "Solenoid", "Stepper")
                    for scheme in ("Linear", "Cubic")})
WANTED_STEP.update({(form, scheme): 8.0 for form in ("GenericAxes", "GenericSets") for scheme in ("Linear", "Cubic")})

SCHEMES = ("Linear", "Cubic", "Spline4", "Spline6", "Spline")
APPLICATIONS = ("Harmonic", "SimpleHarmonic", "LdLq", "FluxIntegralDQTheta")  # of the permanent-magnet machine
WAYS = ("exported", "models", "bare", "clocks")


def read_times(paths):
    """Least processor time in ns by benchmark name."""
    times = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run.get("run_type", "iteration") != "iteration":
                    continue
                if run.get("error_occurred"):
                    sys.exit(f"{run['name']}: {run['error_message']}")
                name = run.get("run_name", run["name"])
                time = run["cpu_time"] * TO_NS[run["time_unit"]]
                times[name] = min(time, times.get(name, time))
    return times


def readable(ns):
    if ns is None:
        return ""
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if ns >= factor:
            return f"{ns / factor:.4g} {unit}"
    return f"{ns:.4g} ns"


def print_table(title, lines):
    """Columns as wide as their longest entry, the first to the left."""
    if len(lines) < 2:
        return
    print(f"\n{title}")
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        cells = [line[0].ljust(widths[0])] + [text.rjust(width) for text, width in zip(line[1:], widths[1:])]
        print("  ".join(cells).rstrip())


class Verdicts:
    """Counts the wanted ratios that were missed."""

    def __init__(self):
        self.missed = 0

    def of(self, met):
        self.missed += 0 if met else 1
        return "met" if met else "MISSED"

    def speed(self, product, reference, wanted):
        """Ratio and what was wanted of it."""
        if not product or not reference:
            return ["", ""]
        ratio = reference / product
        return [f"{ratio:.3g}", "" if wanted is None else f">= {wanted:g} {self.of(ratio >= wanted)}"]


def compare_lookups(times, verdicts):
    lines = [["lookup", "product", "bare", "ratio", "wanted", "clocks", "ratio", "wanted", "random: product", "bare",
              "ratio"]]
    for scheme in SCHEMES:
        for axes in range(1, 6):
            case = f"lookup/{scheme}/{axes}_axes"
            moving = {way: times.get(f"{case}/moving/{way}") for way in WAYS}
            random = {way: times.get(f"{case}/random/{way}") for way in WAYS}
            wanted = WANTED_LOOKUP.get((scheme, axes), {})
            for way in ("exported", "models"):
                if moving[way] is None:
                    continue
                lines.append([f"{scheme}, {axes} axes, {way}", readable(moving[way]), readable(moving["bare"])]
                             + verdicts.speed(moving[way], moving["bare"], wanted.get("bare"))
                             + [readable(moving["clocks"])]
                             + verdicts.speed(moving[way], moving["clocks"], wanted.get("clocks"))
                             + [readable(random[way]), readable(random["bare"])]
                             + verdicts.speed(random[way], random["bare"], None)[:1])
    print_table("One lookup; the point moves a twentieth of a cell per call, beside it points at random", lines)


def compare_steps(times, verdicts):
    lines = [["step", "product", "bare", "ratio", "wanted", "clocks", "ratio"]]
    others = {name.split("/")[1] for name in times if name.startswith("step/")} - set(APPLICATIONS)
    for application in APPLICATIONS + tuple(sorted(others)):
        for scheme in SCHEMES:
            case = f"step/{application}/{scheme}"
            product, bare, clocks = (times.get(f"{case}/{way}") for way in ("exported", "bare", "clocks"))
            if product is None:
                continue
            lines.append([f"{application}, {scheme}", readable(product), readable(bare)]
                         + verdicts.speed(product, bare, WANTED_STEP.get((application, scheme)))
                         + [readable(clocks)] + verdicts.speed(product, clocks, None)[:1])
    print_table("One step of a machine; _random: at positions that jump", lines)


def compare_loads(times, verdicts):
    lines = [["100 MB file", "product", "fread", "product / fread", "wanted"]]
    for case, other, wanted in (("list", "fread", 0.1), ("load", "fread", 1.5), ("load", "fread_fresh", None)):
        product, plain = times.get(f"{case}/product"), times.get(f"{case}/{other}")
        if product is None or plain is None:
            continue
        ratio = product / plain
        lines.append([case if other == "fread" else f"{case}, fread into fresh memory", readable(product),
                      readable(plain), f"{ratio:.3g}",
                      "" if wanted is None else f"<= {wanted:g} {verdicts.of(ratio <= wanted)}"])
    print_table("Listing a file without its table bodies; loading the bodies", lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("results", nargs="+", help="JSON files of the benchmark programs")
    parser.add_argument("--strict", action="store_true", help="exit 1 when a wanted ratio is missed")
    arguments = parser.parse_args()
    times = read_times(arguments.results)
    verdicts = Verdicts()
    compare_lookups(times, verdicts)
    compare_steps(times, verdicts)
    compare_loads(times, verdicts)
    print("\nProcessor time, least of the repetitions. bare, clocks: the plain reference without and with its clocks and")
    print("environment tests; ratio: reference / product.")
    print(f"{verdicts.missed} of the wanted ratios missed" if verdicts.missed else "all wanted ratios met")
    return 1 if arguments.strict and verdicts.missed else 0


if __name__ == "__main__":
    sys.exit(main())
