#!/bin/sh
# lend.sh TREE COMMAND…: runs COMMAND as an ordinary user in this very directory, in whose place the directory TREE then
# lies, because a build knows its path. To be started in a mount namespace of its own.
set -eu

tree=$1
shift
place=$PWD
mount --make-rprivate /

# An empty directory covers the outermost one on the way that others cannot enter.
closed=
above=$place
while above=$(dirname "$above") && [ "$above" != / ]; do
  case $(stat -c %A "$above") in *[xt]) ;; *) closed=$above ;; esac
done
exec 3<"$tree" # by which it is reached even where it lies below what is covered
[ -z "$closed" ] || mount -t tmpfs -o mode=755 tmpfs "$closed"
mkdir -p "$place"
mount --bind /proc/self/fd/3 "$place"
cd "$place"
exec setpriv --reuid=65534 --regid=65534 --clear-groups env HOME=/nonexistent "$@" 3<&-
