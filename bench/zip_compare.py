#!/usr/bin/env python3
"""Times zip_tool against bsdtar, Info-ZIP and Python's zipfile on a camera-card-like tree
it builds itself (about 2,000 files and 350 MB: incompressible frames and clips, compressible
text sidecars): creating the archive at the default level, and extracting it. Prints wall
time, peak memory and the ratio (ours / theirs; below 1 means we are faster), best of ROUNDS
runs, ours and theirs interleaved.

usage: zip_compare.py BUILD_DIR [ROUNDS]"""
import os, shutil, subprocess, sys, tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from fs_compare import make_card, run  # noqa: E402  (the same corpus and timer)

build = sys.argv[1] if len(sys.argv) > 1 else "build"
rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
tool = os.path.join(build, "bench", "zip_tool")


def best(cmd, prepare):
    result = None
    for _ in range(rounds):
        prepare()
        r = run(cmd)
        result = r if result is None or r[0] < result[0] else result
    return result


def report(label, ours, theirs, name):
    print(f"{label:<22}{ours[0]:>9.3f}{ours[1]:>10.1f}{theirs[0]:>10.3f}{theirs[1]:>12.1f}"
          f"{ours[0] / theirs[0]:>7.2f}  vs {name}")


with tempfile.TemporaryDirectory(dir=os.environ.get("FS_BENCH_DIR")) as d:
    card = os.path.join(d, "card")
    files, size = make_card(card)
    archive = os.path.join(d, "card.zip")
    out = os.path.join(d, "out")

    # Each run starts with the disk written back, so that no run pays for another's writes.
    def no_archive():
        if os.path.exists(archive):
            os.remove(archive)
        os.sync()

    def fresh_out():
        shutil.rmtree(out, ignore_errors=True)
        os.makedirs(out)
        os.sync()

    print(f"card tree: {files} files, {size / 1e6:.0f} MB")
    print(f"{'job':<22}{'ours s':>9}{'ours MiB':>10}{'theirs s':>10}{'theirs MiB':>12}{'ratio':>7}  vs")
    ours = best([tool, "zip", archive, card], no_archive)
    for name, cmd in (("bsdtar -a -cf", f"cd {card} && bsdtar -a -cf {archive} ."),
                      ("zip -r", f"cd {card} && zip -q -r {archive} ."),
                      ("python zipfile -c", f"cd {d} && python3 -m zipfile -c {archive} card")):
        report("create archive", ours, best(cmd, no_archive), name)
    subprocess.run(f"cd {card} && bsdtar -a -cf {archive} .", shell=True, check=True)
    print(f"archive (by bsdtar): {os.path.getsize(archive) / 1e6:.0f} MB")
    facade = best([tool, "unzip", archive, out], fresh_out)
    hardened = best([tool, "unzip-hardened", archive, out], fresh_out)
    for name, cmd in (("bsdtar -xf", f"bsdtar -xf {archive} -C {out}"),
                      ("unzip", f"unzip -q -o {archive} -d {out}"),
                      ("python zipfile -e", f"python3 -m zipfile -e {archive} {out}")):
        theirs = best(cmd, fresh_out)
        report("extract (facade)", facade, theirs, name)
        report("extract (hardened)", hardened, theirs, name)
