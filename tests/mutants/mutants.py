#!/usr/bin/env python3
"""Breaks the sources one place at a time and tells which breaks the tests notice.

    tests/mutants/mutants.py WORK_DIR [--seed 1] [--count 50] [--jobs 2] [--only FOLDER] [--report FILE] [--resume]

The tree is copied to WORK_DIR and built there once; each mutant changes one place of one source file, what depends on
it is built again, and the test programs run until one fails. Places are drawn by the seed, folder after folder in
turn, so that every folder of src/ has its share. A mutant that does not compile, or that builds the same machine
code, is no mutant: another one is drawn. So it is with those in equal.tsv, which were not noticed and change nothing that
could be: file, change, code, reason. A program that runs longer than the limit counts as one that failed.
"""

import argparse
import hashlib
import os
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EQUAL = Path(__file__).with_name("equal.tsv")
PROGRAM_LIMIT = 600  # seconds
# Programs that look at a folder first, then those that are quick for all that they see, then the whole suite.
NEAREST = {
    "table": ["table_tests"],
    "store": ["store_tests", "format_tests", "interface_tests"],
    "store/format": ["format_tests"],
    "store/transform": ["transform_tests"],
    "store/measured": ["measured_tests"],
    "models": ["models_tests"],
    "circuit": ["circuit_tests"],
    "circuit/generic": ["generic_tests"],
    "diagnostics": ["diagnostics_tests", "host_tests"],
    "interface": ["interface_tests", "interface_internal_tests"],
}
SECOND = ["same_bits_tests", "interface_tests", "models_tests"]

# What a place may be, and what it becomes. Spaces around an operator keep templates and pointers out.
RULES = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "),
    (r" \+= ", " -= "), (r" -= ", " += "), (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"(?<=[(\s])!(?=[a-z(])", ""), (r"\b0\.0\b", "1.0"), (r"\b1\.0\b", "2.0"), (r"\b2\.0\b", "3.0"),
    (r"\b0\b(?![.xuU])", "1"), (r"\b1\b(?![.xuU])", "2"), (r"\bcontinue;", "break;"), (r"\bbreak;", ";"),
]
SKIPPED_LINES = re.compile(r"^\s*(//|#|\*|template|using|namespace|static_assert|case |default:)|std::uint|constexpr int most_")


def folder_of(path):
    return str(path.relative_to(ROOT / "src").parent)


def code_of(line):
    """The line with texts and comments blanked out, columns kept."""
    line = re.sub(r'"(\\.|[^"\\])*"', lambda m: "~" * len(m.group()), line)
    return re.sub(r"//.*", lambda m: "~" * len(m.group()), line)


def places(path):
    found = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines()):
        if SKIPPED_LINES.search(line):
            continue
        code = code_of(line)
        for rule, (pattern, replacement) in enumerate(RULES):
            found += [(number, m.start(), m.end(), rule) for m in re.finditer(pattern, code)]
    return found


def draw(seed, only):
    """Mutants without end: a folder in turn, a file of it by its number of places, a place of it."""
    by_folder = {}
    sources = (p for p in (ROOT / "src").rglob("*") if p.suffix in {".cpp", ".h"})
    for path in sorted(sources):
        by_folder.setdefault(folder_of(path), []).extend((path, *place) for place in places(path))
    folders = [only] if only else sorted(by_folder)
    chance = random.Random(seed)
    seen = set()
    while True:
        for folder in folders:
            mutant = chance.choice(by_folder[folder])
            if mutant not in seen:
                seen.add(mutant)
                yield folder, mutant


def run(command, limit, **options):
    """Exit code of a program, None beyond the limit."""
    try:
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=limit,
                              check=False, **options).returncode
    except subprocess.TimeoutExpired:
        return None


class Workshop:
    def __init__(self, where, jobs):
        self.tree = where / "tree"
        self.build = where / "build"
        self.jobs = str(jobs)
        where.mkdir(parents=True, exist_ok=True)
        names = subprocess.check_output(["git", "ls-files"], cwd=ROOT, text=True).splitlines()
        for name in names:
            target = self.tree / name
            target.parent.mkdir(parents=True, exist_ok=True)
            source = ROOT / name
            if source.exists() and (not target.exists() or target.read_bytes() != source.read_bytes()):
                shutil.copy(source, target)
        if run(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release",
                "-DKZB_BUILD_BENCH=OFF"], None) != 0:
            sys.exit("mutants: the copied tree does not configure")
        if not self.make("all"):
            sys.exit("mutants: the copied tree does not build")
        self.programs = {p.name for p in self.build.glob("*_tests")}

    def make(self, target):
        return run(["ninja", "-C", self.build, "-j", self.jobs, target], None) == 0

    def built_from(self, path):
        """What holds the code of a source: its object, or the library for a header."""
        if path.suffix == ".h":
            return (self.build / "libKZBCalculator.so").resolve()
        return next(self.build.glob(f"src/CMakeFiles/*.dir/{path.relative_to(ROOT / 'src')}.o"))

    def passes(self, program):
        environment = dict(os.environ, GTEST_FAIL_FAST="1", GTEST_BRIEF="1")
        return run([self.build / program], PROGRAM_LIMIT, cwd=self.build, env=environment) == 0

    def suite(self):
        """The first test of `make test` that fails, or an empty text."""
        if not self.make("all"):
            return "does not build"
        command = ["ctest", "--label-exclude", "long", "--stop-on-failure", "--parallel", self.jobs]
        done = subprocess.run(command, cwd=self.build, capture_output=True, text=True, errors="replace", check=False)
        failed = re.search(r"Test +#\d+: (\S+) \.*\**\s*(Failed|\*\*\*|Timeout|Exception|Subprocess)", done.stdout)
        return "" if done.returncode == 0 else failed.group(1) if failed else "ctest"

    def fate(self, folder):
        """Who notices what is built now, or an empty text."""
        nearest = [p for p in NEAREST.get(folder, []) + SECOND if p in self.programs]
        for program in dict.fromkeys(nearest):
            if not self.make(program):
                return "does not build"
            if not self.passes(program):
                return program
        return self.suite()


def code_digest(path):
    """Of the machine code and its numbers alone."""
    digest = hashlib.sha256()
    for shown in (["-d", "-j", ".text", "--no-show-raw-insn"], ["-s", "-j", ".rodata.cst8", "-j", ".rodata"]):
        dump = subprocess.run(["objdump", *shown, path], capture_output=True, check=False).stdout
        digest.update(b"\n".join(dump.splitlines()[3:]))
    return digest.hexdigest()


def try_mutant(shop, folder, mutant):
    """Fate of a mutant; None where it is none."""
    path, number, start, end, rule = mutant
    target = shop.tree / path.relative_to(ROOT)
    original = target.read_text(encoding="utf-8")
    lines = original.splitlines(keepends=True)
    lines[number] = lines[number][:start] + RULES[rule][1] + lines[number][end:]
    built = shop.built_from(path)
    name = str(built.relative_to(shop.build))
    if not shop.make(name):
        sys.exit("mutants: the copied tree does not build")
    before = code_digest(built)
    target.write_text("".join(lines), encoding="utf-8")
    try:
        if not shop.make(name) or code_digest(built) == before:
            return None
        return shop.fate(folder)
    finally:
        target.write_text(original, encoding="utf-8")


def equal_ones():
    """(file, change, code) of each mutant that is known to change nothing."""
    rows = EQUAL.read_text(encoding="utf-8").splitlines() if EQUAL.exists() else []
    return {tuple(row.split("\t")[:3]) for row in rows if row and not row.startswith("#")}


def read_report(path):
    lines = path.read_text(encoding="utf-8").splitlines() if path and path.exists() else []
    return {line.rsplit(" | ", 1)[0]: line for line in lines if line.startswith("| ") and "`" in line}


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("work", type=Path)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=50)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--only", help="one folder of src/")
    parser.add_argument("--report", type=Path)
    parser.add_argument("--unchecked", action="store_true", help="the suite is known to pass without a mutant")
    parser.add_argument("--resume", action="store_true", help="go on behind the rows of the report")
    options = parser.parse_args()
    shop = Workshop(options.work.resolve(), options.jobs)
    failing = "" if options.unchecked else shop.suite()
    if failing:
        sys.exit(f"mutants: {failing} fails without a mutant")
    known = read_report(options.report) if options.resume else {}
    equal = equal_ones()
    rows = []
    passed_over = 0
    for folder, mutant in draw(options.seed, options.only):
        if len(rows) == options.count:
            break
        path, number, start, end, rule = mutant
        name = path.relative_to(ROOT / "src")
        line = path.read_text(encoding="utf-8").splitlines()[number]
        change = f"`{line[start:end].strip()}` to `{RULES[rule][1].strip() or ' '}`"
        if (str(name), change, line.strip()) in equal:
            passed_over += 1
            continue
        place = f"| {name}:{number + 1} | {change}"
        if place in known:
            rows.append(known[place])
            continue
        began = time.monotonic()
        fate = try_mutant(shop, folder, mutant)
        if fate is None:
            continue
        rows.append(f"{place} | {fate or '**not noticed**'} |")
        print(f"{len(rows)} {rows[-1]} {time.monotonic() - began:.0f} s | {line.strip()}", flush=True)
        if options.report:
            options.report.write_text("| place | change | noticed by |\n|---|---|---|\n" + "\n".join(rows) + "\n",
                                      encoding="utf-8")
    noticed = sum("not noticed" not in row for row in rows)
    print(f"{noticed} of {len(rows)} noticed, {passed_over} equal ones passed over")


if __name__ == "__main__":
    main()
