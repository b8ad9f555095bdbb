#!/bin/sh
# test-distributions.sh [ROOT…]: builds the current tree and runs the demo and the tests in fresh Debian root file
# systems, in each as root and then as an ordinary user. ROOT is the code name of a release or a directory with a root
# file system (fresh-root/run.sh lists the requirements); the default is Debian 12 and 13. Each ROOT takes a whole build
# and two runs of the tests.
set -eu

cd "$(dirname "$0")/.."
[ $# -gt 0 ] || set -- bookworm trixie
for root; do
  echo "=== $root ==="
  git ls-files -z --cached --others --exclude-standard | tar -c --null --files-from=- |
    scripts/fresh-root/run.sh "$root" sh scripts/test-distributions/inside.sh
done
echo "test-distributions: passed in $*"
