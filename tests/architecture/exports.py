"""Compares the names that the built library exports with exports.map and with the public headers."""
import pathlib
import re
import subprocess
import sys

MANGLED = {"_Z17kzbcalcGetMagFluxiP8KZB_CALC": "kzbcalcGetMagFlux"}


def of_library(library):
    out = subprocess.run(["nm", "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    symbols = [line.split()[-1] for line in out.splitlines()]
    versions = {s.split("@@")[-1] for s in symbols if "@@" in s}
    return {s.split("@")[0] for s in symbols} - {"KZBCALCULATOR_2"}, versions


def of_map(path):
    text = re.sub(r"/\*.*?\*/|#.*", "", path.read_text(encoding="utf-8"), flags=re.S)
    return set(re.findall(r"\b(?:kzb\w+|_Z\w+)\b(?=\s*;)", text))


def of_headers(folder):
    names = set()
    for header in folder.glob("*.h"):
        text = re.sub(r"/\*.*?\*/|//[^\n]*", "", header.read_text(encoding="utf-8"), flags=re.S)
        names |= set(re.findall(r"\b(kzbcalc[A-Z]\w*|kzb_[a-z]\w*)\s*\(", text))
    return names


def main(root, library):
    root = pathlib.Path(root)
    exported, versions = of_library(library)
    mapped = of_map(root / "src/interface/exports.map")
    declared = of_headers(root / "include/KZBCalculator")
    plain = {MANGLED.get(name, name) for name in exported}
    faults = [f"exported, not in exports.map: {n}" for n in sorted(exported - mapped)]
    faults += [f"in exports.map, not exported: {n}" for n in sorted(mapped - exported)]
    faults += [f"exported, not declared: {n}" for n in sorted(plain - declared)]
    faults += [f"declared, not exported: {n}" for n in sorted(declared - plain)]
    if versions != {"KZBCALCULATOR_2"}:
        faults.append(f"version nodes: {sorted(versions)}")
    soname = subprocess.run(["readelf", "-d", library], check=True, capture_output=True, text=True).stdout
    if "[libKZBCalculator.so.2]" not in soname:
        faults.append("SONAME is not libKZBCalculator.so.2")
    print("\n".join(faults) or f"{len(exported)} names exported as declared")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
