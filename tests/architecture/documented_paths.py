"""Fails when docs/architecture.md names a path of the tree that does not exist."""
import pathlib
import re
import sys


def main(root):
    root = pathlib.Path(root)
    text = (root / "docs/architecture.md").read_text(encoding="utf-8")
    names = re.findall(r"`((?:include|src|tools|tests|bench|examples|docs|fuzz|cmake)/[\w./<>*-]*)`", text)
    missing = sorted({n for n in names if "<" not in n and not list(root.glob(n.rstrip("/")))})
    print("\n".join(f"docs/architecture.md names {n}, which does not exist" for n in missing) or f"{len(names)} paths")
    return 1 if missing or not names else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
