#!/usr/bin/env bash
# Runs every benchmark of a build folder (default: build): the format engine beside
# snprintf, the per-call costs of the text, date and collection operations, and the
# scripts that run the same job with the usual tool (sort -V, Python's urllib.parse, md5sum,
# sha1sum, gzip, xxd, openssl, cp -a, rsync, rm -rf, bsdtar, zip, unzip, raw SQLite) and print the
# ratios. CODEC_MIB sets the codec file size
# (default 256).
set -euo pipefail
build=${1:-build}
here=$(dirname "$0")
out=$(mktemp)
trap 'rm -f "$out"' EXIT

echo "== format engine against snprintf"
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

for program in text_bench time_bench collections_bench; do
  echo "== $program"
  "$build/bench/$program" --benchmark_min_time=0.2 2>/dev/null | grep -E '^(BM_|cold)'
done

echo "== sequence sort against sort -V"
python3 "$here/text_compare.py" "$build"
echo "== query parsing and building against Python"
python3 "$here/net_compare.py" "$build"
echo "== codecs against the command-line tools"
python3 "$here/codec_compare.py" "$build" "${CODEC_MIB:-256}"
echo "== folder copies, merges, removal, recreation and scans against cp, rsync, rm and readdir"
python3 "$here/fs_compare.py" "$build"
echo "== zip archives against bsdtar, Info-ZIP and Python's zipfile"
python3 "$here/zip_compare.py" "$build"
echo "== the tarnvik tool against cp, md5sum, bsdtar, cat and sort -V"
python3 "$here/tool_compare.py" "$build"
echo "== the object-graph store against hand-written SQLite C code"
"$build/bench/store_bench"
