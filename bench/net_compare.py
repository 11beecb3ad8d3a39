#!/usr/bin/env python3
"""Parses a 1 MiB query of 50,000 pairs with percent escapes through query_tool
(URLQueryParametersWithOptions, then URLQueryWithParameters back) and through Python's
urllib.parse.parse_qs and urlencode(doseq=True), and prints the times and ratios
(ours / Python; below 1 means faster).

usage: net_compare.py BUILD_DIR"""
import os, random, subprocess, sys, tempfile, time, urllib.parse

build = sys.argv[1] if len(sys.argv) > 1 else "build"
rng = random.Random(4)
words = ["clip", "Grüße", "reel 9", "a&b", "x=y", "100%", "take/B", "é", "scene", "日本"]
pairs = []
for i in range(50000):
    key = f"k{rng.randrange(20000)}"
    value = " ".join(rng.choice(words) for _ in range(rng.randrange(1, 3)))
    pairs.append(urllib.parse.quote(key, safe="") + "=" + urllib.parse.quote(value, safe=""))
query = "&".join(pairs)
rounds = 5
with tempfile.TemporaryDirectory() as d:
    path = os.path.join(d, "query")
    with open(path, "w") as f:
        f.write(query)
    out = subprocess.run([os.path.join(build, "bench", "query_tool"), path, str(rounds)], check=True,
                         capture_output=True, text=True).stdout.split()
    ours_parse, ours_build = float(out[0]), float(out[1])
start = time.perf_counter()
for _ in range(rounds):
    parsed = urllib.parse.parse_qs(query, keep_blank_values=True)
py_parse = (time.perf_counter() - start) / rounds
start = time.perf_counter()
for _ in range(rounds):
    urllib.parse.urlencode(parsed, doseq=True)
py_build = (time.perf_counter() - start) / rounds
print(f"query of {len(query) / 1048576:.2f} MiB, {len(pairs)} pairs")
print(f"parse  ours {ours_parse * 1000:7.1f} ms   python {py_parse * 1000:7.1f} ms   ratio {ours_parse / py_parse:.3f}")
print(f"build  ours {ours_build * 1000:7.1f} ms   python {py_build * 1000:7.1f} ms   ratio {ours_build / py_build:.3f}")
