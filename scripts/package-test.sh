#!/bin/sh
# package-test.sh PACKAGES [ROOT]: installs the Debian packages in the directory PACKAGES in a fresh root file system,
# runs orvelbox there, and removes them again. The root file system is of this machine's release, or a copy of the
# directory ROOT; fresh-root/run.sh lists the requirements.
set -eu

packages=$(cd "$1" && pwd)
scripts=$(cd "$(dirname "$0")" && pwd)
codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)

(cd "$packages" && tar -c ./*.deb -C "$scripts/package-test" inside.sh) |
  "$scripts/fresh-root/run.sh" "${2:-$codename}" sh inside.sh
echo "package-test: passed"
