"""Fails on an include from one folder of src/ to another that docs/architecture.md does not draw."""
import pathlib
import re
import sys

ALLOWED = {
    "interface": {"models", "circuit/generic", "store"},
    "circuit/generic": {"models", "circuit", "store"},
    "models": {"circuit", "store"},
    "store": {"table"},
    "table": set(),
    "circuit": set(),
    "diagnostics": set(),
}


def layer(path):
    parts = path.split("/")
    if parts[:2] == ["circuit", "generic"]:
        return "circuit/generic"
    return parts[0]


def main(root):
    source = pathlib.Path(root) / "src"
    faults = []
    for file in sorted(source.rglob("*.[ch]*")):
        own = layer(file.relative_to(source).as_posix())
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            match = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
            if not match or match.group(1).startswith("KZBCalculator/"):
                continue
            other = layer(match.group(1))
            if "/" not in match.group(1):
                faults.append(f"{file}:{number}: include by the path from src/: {line.strip()}")
            elif other not in (own, "diagnostics") and not uses(own, other):
                faults.append(f"{file}:{number}: {own} may not include {other}")
    print("\n".join(faults) or f"includes go one way in {source}")
    return 1 if faults else 0


def uses(own, other):
    """Whether `other` is reached from `own` along the arrows."""
    reached, waiting = set(), [own]
    while waiting:
        for below in ALLOWED.get(waiting.pop(), set()) - reached:
            reached.add(below)
            waiting.append(below)
    return other in reached


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
