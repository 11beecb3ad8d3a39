#!/usr/bin/env python3
"""Times codec_tool against md5sum, sha1sum, gzip, xxd and openssl on the same files and
prints wall time, peak memory and the ratio (ours / theirs; below 1 means we are faster).

usage: codec_compare.py BUILD_DIR [SIZE_MIB]"""
import os, random, subprocess, sys, tempfile, time

build = sys.argv[1] if len(sys.argv) > 1 else "build"
size_mib = int(sys.argv[2]) if len(sys.argv) > 2 else 256
tool = os.path.join(build, "bench", "codec_tool")
key = "media-key"
key_hex = key.encode().ljust(32, b"\0").hex()
iv = "0" * 32


def timed(cmd, stdout=None):
    """Wall seconds and peak resident set (MiB) of one run, best of two. Each run starts with
    no output file and nothing waiting to be written back, so that neither tool pays for
    truncating or flushing what the run before it wrote (the main source of the spread)."""
    best = None
    for _ in range(2):
        if os.path.exists(out):
            os.remove(out)
        os.sync()
        start = time.perf_counter()
        proc = subprocess.Popen(cmd, stdout=stdout or subprocess.DEVNULL, shell=isinstance(cmd, str))
        _, status, usage = os.wait4(proc.pid, 0)
        elapsed = time.perf_counter() - start
        if status != 0:
            raise SystemExit(f"failed: {cmd}")
        run = (elapsed, usage.ru_maxrss / 1024)
        best = run if best is None or run[0] < best[0] else best
    return best


with tempfile.TemporaryDirectory() as d:
    text = os.path.join(d, "text")
    rng = random.Random(5)
    words = [b"clip ", b"reel ", b"A001C009 ", b"take ", b"frames\n", b"25fps ", b"Grading "]
    block = b"".join(rng.choice(words) for _ in range(20000))
    with open(text, "wb") as f:
        for _ in range(size_mib * 1024 * 1024 // len(block) + 1):
            f.write(block)
        f.truncate(size_mib * 1024 * 1024)
    small = os.path.join(d, "small")
    with open(small, "wb") as f:
        for _ in range(32):
            f.write(os.urandom(1024 * 1024))
    subprocess.run(f"gzip -6 -c {text} > {text}.gz", shell=True, check=True)
    subprocess.run(["openssl", "enc", "-aes-256-cbc", "-K", key_hex, "-iv", iv, "-in", text,
                    "-out", text + ".aes"], check=True)
    out = os.path.join(d, "out")
    jobs = [
        (f"MD5 {size_mib} MiB", [tool, "md5", text], ["md5sum", text], "md5sum"),
        (f"SHA-1 {size_mib} MiB", [tool, "sha1", text], ["sha1sum", text], "sha1sum"),
        (f"gzip pack {size_mib} MiB", [tool, "gzip", text, out], f"gzip -6 -c {text} > {out}", "gzip -6 -c"),
        (f"gzip unpack", [tool, "gunzip", text + ".gz", out], f"gzip -dc {text}.gz > {out}", "gzip -dc"),
        ("hex dump 32 MiB", [tool, "hexdump", small, out], f"xxd {small} > {out}", "xxd"),
        (f"AES-256 enc {size_mib} MiB", [tool, "aes-enc", text, out, key],
         ["openssl", "enc", "-aes-256-cbc", "-K", key_hex, "-iv", iv, "-in", text, "-out", out], "openssl enc"),
        (f"AES-256 dec {size_mib} MiB", [tool, "aes-dec", text + ".aes", out, key],
         ["openssl", "enc", "-d", "-aes-256-cbc", "-K", key_hex, "-iv", iv, "-in", text + ".aes", "-out", out],
         "openssl enc -d"),
    ]
    print(f"{'job':<22}{'ours s':>9}{'ours MiB':>10}{'theirs s':>10}{'theirs MiB':>12}{'ratio':>7}  vs")
    for name, ours, theirs, label in jobs:
        a, am = timed(ours)
        b, bm = timed(theirs)
        print(f"{name:<22}{a:>9.2f}{am:>10.0f}{b:>10.2f}{bm:>12.0f}{a / b:>7.2f}  {label}")
