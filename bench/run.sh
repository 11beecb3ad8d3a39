#!/usr/bin/env bash
# Runs the benchmarks of a build folder (default: build) and prints each of our cases
# beside the tool or library a user would otherwise pick, with the ratio.
set -euo pipefail
build=${1:-build}
out=$(mktemp)
trap 'rm -f "$out"' EXIT
"$build/bench/format_bench" --benchmark_format=csv --benchmark_min_time=0.2 2>/dev/null >"$out"
python3 - "$out" <<'PY'
import csv, sys
rows = {r["name"].strip('"'): float(r["real_time"]) for r in csv.DictReader(
    l for l in open(sys.argv[1]) if l.startswith(("name", '"BM_', "BM_")))}
pairs = [("Integers", "BM_Format_Integers", "BM_Snprintf_Integers"),
         ("Padded counter", "BM_Format_PaddedCounter", "BM_Snprintf_PaddedCounter"),
         ("Strings", "BM_Format_Strings", "BM_Snprintf_Strings")]
print(f"{'format':<16}{'ours ns':>10}{'snprintf ns':>14}{'ratio':>8}")
for label, ours, theirs in pairs:
    a, b = rows[ours], rows[theirs]
    print(f"{label:<16}{a:>10.1f}{b:>14.1f}{a / b:>8.2f}")
for name, t in rows.items():
    if name.startswith("BM_String_UTF8RoundTrip"):
        print(f"{name:<34}{t:>10.1f} ns")
PY
