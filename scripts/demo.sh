#!/usr/bin/env bash
# What `make demo` shows: the tarnvik tool doing the everyday chores on a small camera card
# it makes in a temporary folder (clip folders of frames, a movie, sidecars, a .DS_Store).
#   scripts/demo.sh BUILD_DIR
set -euo pipefail
tool="$(cd "${1:-build}" && pwd)/tools/tarnvik/tarnvik"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

python3 - <<'PY'
import os, random
rng = random.Random(1)
for clip in range(1, 4):
    folder = f"CARD/DCIM/A001C00{clip}"
    os.makedirs(folder)
    for frame in range(40):
        with open(f"{folder}/A001C00{clip}_{frame:06d}.dng", "wb") as f:
            f.write(os.urandom(rng.randint(8, 48) * 1024))
os.makedirs("CARD/CLIPS")
with open("CARD/CLIPS/A001C004.mov", "wb") as f:
    f.write(os.urandom(3 * 1024 * 1024))
os.makedirs("CARD/META")
for clip in range(1, 5):
    with open(f"CARD/META/A001C00{clip}.xml", "w") as f:
        f.write(f"<clip name='A001C00{clip}' fps='25'/>\n" * 50)
open("CARD/.DS_Store", "wb").write(b"\0" * 64)
PY
mkdir -p Backup/Day01

# Prints the command as a user types it, then runs it.
step() {
  printf '\n$ tarnvik %s\n' "$*"
  "$tool" "$@"
}
step offload CARD Backup/Day01
(cd Backup/Day01 && printf '\n$ md5sum -c --quiet offload.md5 && echo every file verified\n' &&
 md5sum -c --quiet offload.md5 && echo every file verified)
step scan Backup/Day01
step zip Day01.zip Backup/Day01
step unzip Day01.zip Restore
printf '\n$ tarnvik unzip evil.zip Elsewhere   # an archive whose names climb out\n'
python3 -c "import zipfile; z = zipfile.ZipFile('evil.zip', 'w'); z.writestr('../../escaped.txt', 'x'); z.close()"
"$tool" unzip evil.zip Elsewhere || echo "(refused; exit code $?)"
step name next A001C009
printf '\n$ ls Backup/Day01/DCIM | tarnvik sort\n'
ls Backup/Day01/DCIM | "$tool" sort
step time 5400
