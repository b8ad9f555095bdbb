#!/bin/sh
# package-test.sh PACKAGES [ROOT]: installs the Debian packages in the directory PACKAGES in a fresh root file system,
# lets orvelbox work there, and removes them again. The root file system is made by debootstrap (from the mirror
# $DEBIAN_MIRROR where that is set), or is a copy of the directory ROOT. Needs root and a Debian mirror; changes nothing
# but a temporary directory, which goes in the end.
set -eu

packages=$(cd "$1" && pwd)
scripts=$(cd "$(dirname "$0")" && pwd)
if [ "$(id -u)" -ne 0 ]; then
  echo "package-test: run it as root; it mounts and changes its root directory" >&2
  exit 1
fi
work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
trap 'exit 130' INT TERM HUP
root=$work/root

if [ $# -gt 1 ]; then
  echo "copying $2"
  cp -a "$2" "$root"
else
  codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
  # shellcheck disable=SC2086  # no mirror, no argument
  debootstrap --variant=minbase "$codename" "$root" ${DEBIAN_MIRROR:-}
fi
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
mkdir -p "$root/packages"
cp "$packages"/*.deb "$scripts/package-test/inside.sh" "$root/packages"

# The mounts and the processes of the test live in namespaces of their own, and end with it.
unshare --mount --pid --fork --kill-child "$scripts/package-test/enter.sh" "$root" sh /packages/inside.sh
echo "package-test: passed"
