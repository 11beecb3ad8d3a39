#!/usr/bin/env python3
"""Times fs_tool against cp -a, rsync, rm -rf and readdir on a corpus it builds itself: a
camera-card-like tree (about 2,000 files and 350 MB: 4 to 64 KiB frames in clip folders, 2
to 20 MB clips, small sidecars) and a flat folder of 100,000 names. Prints wall time, peak
memory and the ratio (ours / theirs; below 1 means we are faster), best of ROUNDS runs,
ours and theirs interleaved.

usage: fs_compare.py BUILD_DIR [ROUNDS]"""
import os, random, shutil, subprocess, sys, tempfile, time

build = sys.argv[1] if len(sys.argv) > 1 else "build"
rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 5
tool = os.path.join(build, "bench", "fs_tool")


def run(cmd):
    """Wall seconds and peak resident set (MiB) of one run. GNU time reports the command's
    own peak; without it the figure includes this script's memory at the fork."""
    timed = os.path.exists("/usr/bin/time")
    with tempfile.NamedTemporaryFile("r") as report:
        if timed:
            cmd = ["/usr/bin/time", "-f", "%M", "-o", report.name] + (
                ["sh", "-c", cmd] if isinstance(cmd, str) else list(cmd))
        start = time.perf_counter()
        proc = subprocess.Popen(cmd, shell=isinstance(cmd, str))
        _, status, usage = os.wait4(proc.pid, 0)
        elapsed = time.perf_counter() - start
        peak = int(report.read().split()[-1]) / 1024 if timed else usage.ru_maxrss / 1024
    if status != 0:
        raise SystemExit(f"failed: {cmd}")
    return elapsed, peak


def make_card(root):
    rng = random.Random(7)
    files = size = 0
    for reel in range(8):
        clip = os.path.join(root, "DCIM", f"A00{reel}C001")
        os.makedirs(clip)
        for frame in range(230):
            n = rng.randint(4, 64) * 1024
            with open(os.path.join(clip, f"frame_{frame:06d}.dng"), "wb") as f:
                f.write(os.urandom(n))
            files, size = files + 1, size + n
    os.makedirs(os.path.join(root, "CLIPS"))
    for i in range(22):
        n = rng.randint(2, 20) * 1024 * 1024
        with open(os.path.join(root, "CLIPS", f"A001C{i:03d}.mov"), "wb") as f:
            for _ in range(n // (1024 * 1024)):  # in pieces, so that this script stays small
                f.write(os.urandom(1024 * 1024))
        files, size = files + 1, size + n
    os.makedirs(os.path.join(root, "META"))
    for i in range(160):
        text = f"clip A001C{i:03d}\nfps 25\nreel A001\n" * rng.randint(1, 20)
        with open(os.path.join(root, "META", f"A001C{i:03d}.xml"), "w") as f:
            f.write(text)
        files, size = files + 1, size + len(text)
    return files, size


def fresh(path):
    shutil.rmtree(path, ignore_errors=True)
    os.makedirs(path)
    return path


def compare(label, ours, theirs, name, prepare=lambda: None):
    best_ours = best_theirs = None
    # Each run starts with the disk written back, so that no run pays for another's writes.
    for _ in range(rounds):
        prepare()
        os.sync()
        a = run(ours)
        prepare()
        os.sync()
        b = run(theirs)
        best_ours = a if best_ours is None or a[0] < best_ours[0] else best_ours
        best_theirs = b if best_theirs is None or b[0] < best_theirs[0] else best_theirs
    print(f"{label:<24}{best_ours[0]:>9.3f}{best_ours[1]:>10.1f}{best_theirs[0]:>10.3f}"
          f"{best_theirs[1]:>12.1f}{best_ours[0] / best_theirs[0]:>7.2f}  vs {name}")


def main():
    with tempfile.TemporaryDirectory(dir=os.environ.get("FS_BENCH_DIR")) as d:
        card = os.path.join(d, "card")
        files, size = make_card(card)
        flat = os.path.join(d, "flat")
        os.makedirs(flat)
        for i in range(100000):
            open(os.path.join(flat, f"A001C001_{i:06d}.dng"), "w").close()
        out = os.path.join(d, "out")
        print(f"card tree: {files} files, {size / 1e6:.0f} MB; flat folder: 100000 names")
        print(f"{'job':<24}{'ours s':>9}{'ours MiB':>10}{'theirs s':>10}{'theirs MiB':>12}{'ratio':>7}  vs")
        compare("contents copy", [tool, "copy", card, out], ["cp", "-a", card + "/.", out], "cp -a",
                prepare=lambda: fresh(out))
        fresh(out)
        subprocess.run(["cp", "-a", card + "/.", out], check=True)
        compare("merge, all present", [tool, "merge", card, out], ["rsync", "-a", card + "/", out + "/"],
                "rsync -a")
        compare("merge, all present", [tool, "merge", card, out], ["cp", "-a", "-n", card + "/.", out],
                "cp -a -n")
        victim = os.path.join(d, "victim")

        def copied():
            shutil.rmtree(victim, ignore_errors=True)
            subprocess.run(["cp", "-a", card, victim], check=True)
        compare("removal", [tool, "remove", victim], ["rm", "-rf", victim], "rm -rf", prepare=copied)
        compare("folder recreation", [tool, "recreate", card, out],
                ["rsync", "-a", "-f", "+ */", "-f", "- *", card + "/", out + "/"],
                "rsync -a dirs only", prepare=lambda: fresh(out))
        records, ours, bare, standard = subprocess.run(
            [tool, "scan", flat, str(max(rounds, 10))], check=True, capture_output=True,
            text=True).stdout.split()
        ours, bare, standard = float(ours), float(bare), float(standard)
        print(f"scan of 100k names: CFIFile records {ours * 1e3:.1f} ms, readdir loop {bare * 1e3:.1f} ms "
              f"(ratio {ours / bare:.2f}), std::filesystem {standard * 1e3:.1f} ms "
              f"({standard / ours:.2f}x slower than ours)")


if __name__ == "__main__":
    main()
