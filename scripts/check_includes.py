#!/usr/bin/env python3
"""Fails when an include of the library points upwards or header includes form a loop.

Each folder below src/tarnvik is a floor; a file may include headers of its own floor and
of floors below it, never of a higher floor or of a sibling on the same floor."""
import pathlib
import re
import sys

FLOORS = {
    "platform/base": 0,
    "platform/text": 1,
    "platform/system": 2,
    "platform/time": 3,
    "platform/net": 4,
    "platform/store": 5,
    "platform/ui": 5,
    "platform": 6,  # foundation.hpp, which includes the whole platform layer
    "core": 7,
    "text": 8,
    "collections": 8,
    "net": 8,
    "codec": 8,
    "time": 8,
    "runtime": 8,
    "app": 8,
    "store": 8,
    "fs": 9,  # uses text (unique names, affixes)
    "ui": 9,  # uses text (hex numbers, regex matches) and collections
    "qt": 10,  # the optional Qt adapter, on ui
    "zip": 9,
    "": 100,  # tarnvik.hpp, which includes everything
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"tarnvik/([^"]+)"', re.M)


def floor_of(path):
    """The floor of a path relative to src/tarnvik, e.g. platform/base/internal/x.hpp."""
    parts = path.split("/")
    for depth in (2, 1, 0):
        key = "/".join(parts[:depth])
        if key in FLOORS and (depth < len(parts)):
            return key
    raise KeyError(path)


def main(root):
    base = pathlib.Path(root) / "src" / "tarnvik"
    files = {p.relative_to(base).as_posix(): p for p in base.rglob("*") if p.suffix in (".hpp", ".cpp")}
    problems = []
    graph = {}
    for name, path in sorted(files.items()):
        own = floor_of(name)
        targets = INCLUDE.findall(path.read_text())
        graph[name] = [t for t in targets if t.endswith(".hpp")]
        for target in targets:
            if target not in files:
                problems.append(f"{name}: includes missing tarnvik/{target}")
                continue
            other = floor_of(target)
            if other != own and FLOORS[other] >= FLOORS[own]:
                problems.append(f"{name} ({own}) includes tarnvik/{target} ({other})")
    # Header loops: depth-first search over header-to-header includes.
    state = {}

    def visit(node, trail):
        state[node] = 1
        for nxt in graph.get(node, []):
            if state.get(nxt) == 1:
                loop = trail[trail.index(nxt):] + [nxt] if nxt in trail else [node, nxt]
                problems.append("header loop: " + " -> ".join(loop))
            elif nxt not in state:
                visit(nxt, trail + [nxt])
        state[node] = 2

    for header in sorted(h for h in graph if h.endswith(".hpp")):
        if header not in state:
            visit(header, [header])
    for p in problems:
        print(p)
    print(f"{len(files)} files read, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else "."))
