#!/usr/bin/env python3
"""Times the tarnvik tool against what a user would otherwise run, on the camera-card tree of
fs_compare.py (about 2,000 files, 350 MB): offload (copy and MD5 verification) against cp -a
followed by md5sum of the copies; zip and unzip against bsdtar; hash against md5sum and
(XXH128) against cat; one 512 MiB clip hashed (SHA-256) against sha256sum, whose peak memory
shows that a file is read in blocks; sort of a million clip names against sort -V. Best of ROUNDS runs,
ours and theirs interleaved, each after the disk was written back.

usage: tool_compare.py BUILD_DIR [ROUNDS]"""
import os, random, shutil, subprocess, sys, tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from fs_compare import make_card, run  # noqa: E402

build = sys.argv[1] if len(sys.argv) > 1 else "build"
rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
tool = os.path.abspath(os.path.join(build, "tools", "tarnvik", "tarnvik"))


def best(cmd, prepare):
    result = None
    for _ in range(rounds):
        prepare()
        os.sync()
        r = run(cmd)
        result = r if result is None or r[0] < result[0] else result
    return result


def compare(label, ours, theirs, name, prepare=lambda: None):
    a, b = best(ours, prepare), best(theirs, prepare)
    print(f"{label:<22}{a[0]:>9.3f}{a[1]:>10.1f}{b[0]:>10.3f}{b[1]:>12.1f}{a[0] / b[0]:>7.2f}  vs {name}")


with tempfile.TemporaryDirectory(dir=os.environ.get("FS_BENCH_DIR")) as d:
    card = os.path.join(d, "card")
    files, size = make_card(card)
    out = os.path.join(d, "out")
    archive = os.path.join(d, "card.zip")
    names = os.path.join(d, "names.txt")
    rng = random.Random(3)
    with open(names, "w") as f:
        for _ in range(1000000):
            f.write(f"A{rng.randint(1, 999):03d}C{rng.randint(1, 999):03d}_{rng.randint(1, 99999)}.dng\n")

    def fresh_out():
        shutil.rmtree(out, ignore_errors=True)
        os.makedirs(out)

    def no_archive():
        if os.path.exists(archive):
            os.remove(archive)

    every_file = f"cd {card} && find . -type f -print0 | xargs -0"
    print(f"card tree: {files} files, {size / 1e6:.0f} MB; {os.cpu_count()} cores")
    print(f"{'job':<22}{'ours s':>9}{'ours MiB':>10}{'theirs s':>10}{'theirs MiB':>12}{'ratio':>7}  vs")
    compare("offload (MD5)", f"{tool} -q offload {card} {out} > /dev/null",
            f"cp -a {card}/. {out} && cd {out} && find . -type f -print0 | xargs -0 md5sum > /dev/null",
            "cp -a, then md5sum", fresh_out)
    compare("zip", f"cd {d} && {tool} -q zip {archive} card > /dev/null", f"cd {card} && bsdtar -a -cf {archive} .",
            "bsdtar -a -cf", no_archive)
    subprocess.run(f"cd {card} && bsdtar -a -cf {archive} .", shell=True, check=True)
    compare("unzip (hardened)", f"{tool} -q unzip {archive} {out} > /dev/null", f"bsdtar -xf {archive} -C {out}",
            "bsdtar -xf", fresh_out)
    compare("hash (MD5)", f"{every_file} {tool} -q hash > /dev/null", f"{every_file} md5sum > /dev/null", "md5sum")
    compare("hash (XXH128)", f"{every_file} {tool} -q hash --xxh128 > /dev/null", f"{every_file} cat > /dev/null",
            "cat")
    big = os.path.join(d, "A001C001.mov")
    with open(big, "wb") as f:
        for _ in range(512):
            f.write(os.urandom(1 << 20))
    compare("hash 512 MiB SHA-256", f"{tool} -q hash --sha256 {big} > /dev/null", f"sha256sum {big} > /dev/null",
            "sha256sum")
    compare("sort 1M names", f"{tool} sort < {names} > /dev/null", f"sort -V {names} > /dev/null", "sort -V")
