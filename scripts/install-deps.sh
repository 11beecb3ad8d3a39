#!/usr/bin/env bash
# Installs the Debian packages the project builds, tests and benchmarks with, when any is
# missing. Runs apt-get update first, as a fresh machine needs. With --fuzz it also installs
# clang and its libFuzzer runtime, for the harnesses in fuzz/.
set -euo pipefail
packages=(build-essential cmake pkg-config ccache openssl gzip xxd python3 rsync time
          libicu-dev libplist-dev libssl-dev zlib1g-dev liburiparser-dev libminizip-dev libdeflate-dev libxxhash-dev libsqlite3-dev
          zip unzip libarchive-tools libcli11-dev nlohmann-json3-dev xxhash help2man
          libgtest-dev libgmock-dev libbenchmark-dev libavutil-dev qt6-base-dev)
if [ "${1:-}" = "--fuzz" ]; then
  packages+=(clang libclang-rt-dev)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
