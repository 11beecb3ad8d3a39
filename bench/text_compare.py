#!/usr/bin/env python3
"""Sorts 1,000,000 clip names with sequence_sort (compareForSequence) and with GNU
`sort -V`, and prints both times and the ratio (ours / theirs; below 1 means faster).

usage: text_compare.py BUILD_DIR [COUNT]"""
import os, random, subprocess, sys, tempfile, time

build = sys.argv[1] if len(sys.argv) > 1 else "build"
count = int(sys.argv[2]) if len(sys.argv) > 2 else 1_000_000
tool = os.path.join(build, "bench", "sequence_sort")
rng = random.Random(11)


def name():
    form = rng.randrange(5)
    if form == 0:
        return f"A{rng.randrange(1, 999):03d}C{rng.randrange(1, 9999):04d}.mov"
    if form == 1:
        return f"clip{rng.randrange(1, 100000)}.mov"
    if form == 2:
        return f"Reel_{rng.randrange(1, 500)}.mxf"
    if form == 3:
        return f"Take {chr(65 + rng.randrange(26))}.mov"
    return f"Day{rng.randrange(1, 60):02d}_Shot{rng.randrange(1, 300)}_v{rng.randrange(1, 9)}.mp4"


def best_of(cmd, runs=3):
    best = None
    for _ in range(runs):
        start = time.perf_counter()
        subprocess.run(cmd, check=True, shell=isinstance(cmd, str))
        elapsed = time.perf_counter() - start
        best = elapsed if best is None else min(best, elapsed)
    return best


with tempfile.TemporaryDirectory() as d:
    names = os.path.join(d, "names")
    with open(names, "w") as f:
        f.write("\n".join(name() for _ in range(count)))
    ours = best_of([tool, names, os.path.join(d, "ours")])
    theirs = best_of(f"LC_ALL=C sort -V {names} > {d}/theirs")
    print(f"sort {count} names   ours {ours:.2f} s   sort -V {theirs:.2f} s   ratio {ours / theirs:.2f}")
