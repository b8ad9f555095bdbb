#!/bin/sh
# reproducible.sh JOBS: builds the Debian packages twice and compares the bytes: from copies of the sources in folders
# of different names and depths, at different times and with different settings of the environment.
set -eu

jobs=$1
sources=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM HUP
export CCACHE_DISABLE=1 # a cache would hand the first build's objects to the second

copy_sources() {
  mkdir -p "$1"
  (cd "$sources" && git ls-files -z --cached --others --exclude-standard | tar -c --null -T - --ignore-failed-read) |
    tar -x -C "$1"
}

# make_packages FOLDER: like `make package`.
make_packages() {
  (cd "$1" && cmake --preset package && cmake --build --preset package --parallel "$jobs" &&
    scripts/package.sh build/package) >"$work/output" 2>&1 || { cat "$work/output"; exit 1; }
}

one=$work/one
other="$work/another/deeper folder/of sources"
(umask 022; copy_sources "$one")
(umask 002; copy_sources "$other")
(umask 022; TZ=UTC LC_ALL=C.UTF-8 make_packages "$one")
(umask 002; TZ=Asia/Tokyo LC_ALL=C make_packages "$other")

status=0
for package in "$one"/build/package/packages/*.deb; do
  if cmp "$package" "$other/build/package/packages/$(basename "$package")"; then
    sha256sum "$package" | sed "s|  .*/|  |"
  else
    status=1
  fi
done
[ "$status" -eq 0 ] || { echo "the builds differ" >&2; exit 1; }
echo "both builds made the same bytes"
