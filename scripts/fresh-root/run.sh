#!/bin/sh
# run.sh ROOT COMMAND…: runs COMMAND as root in a fresh Debian root file system, in the directory /material, into which
# it unpacks the tar archive on standard input. ROOT is the code name of a release, which debootstrap installs (from the
# mirror $DEBIAN_MIRROR if set), or a directory with a root file system, which is copied. Needs root and, for packages,
# a mirror. Changes only a temporary directory, which is removed at the end.
set -eu

if [ "$(id -u)" -ne 0 ]; then
  echo "run it as root; it mounts and changes its root directory" >&2
  exit 1
fi
wanted=$1
shift
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
trap 'exit 130' INT TERM HUP
root=$work/root

if [ -d "$wanted" ]; then
  echo "copying $wanted"
  cp -a "$wanted" "$root"
else
  # shellcheck disable=SC2086  # no mirror, no argument
  debootstrap --variant=minbase "$wanted" "$root" ${DEBIAN_MIRROR:-}
fi
cp -L /etc/resolv.conf "$root/etc/resolv.conf"
mkdir "$root/material"
tar -x --no-same-owner -C "$root/material"

# The mounts and processes are in new namespaces and end with them.
unshare --mount --pid --fork --kill-child "$here/enter.sh" "$root" "$@" </dev/null
