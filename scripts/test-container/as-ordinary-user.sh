#!/bin/sh
# as-ordinary-user.sh TREE COMMAND…: runs COMMAND as an ordinary user. The directory TREE is mounted over the current
# directory first, because a build contains its own path. Start it in a new mount namespace.
set -eu

tree=$1
shift
place=$PWD
mount --make-rprivate /

# Mounts an empty directory over the outermost parent directory that other users cannot enter.
closed=
above=$place
while above=$(dirname "$above") && [ "$above" != / ]; do
  case $(stat -c %A "$above") in *[xt]) ;; *) closed=$above ;; esac
done
exec 3<"$tree" # stays reachable when a mount covers its path
[ -z "$closed" ] || mount -t tmpfs -o mode=755 tmpfs "$closed"
mkdir -p "$place"
mount --bind /proc/self/fd/3 "$place"
cd "$place"
exec setpriv --reuid=65534 --regid=65534 --clear-groups env HOME=/nonexistent "$@" 3<&-
