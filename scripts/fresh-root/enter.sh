#!/bin/sh
# enter.sh ROOT COMMAND…: runs COMMAND in /material of the root file system in the directory ROOT. Start it in new mount
# and pid namespaces.
set -eu

root=$1
shift
mount --make-rprivate /
mount --bind "$root" "$root"
cd "$root"
mkdir -p proc sys dev tmp .outside
mount -t proc proc proc
mount -t tmpfs tmpfs tmp
chmod 1777 tmp
mount -t tmpfs tmpfs dev
for device in null zero full random urandom; do
  : >"dev/$device"
  mount --bind "/dev/$device" "dev/$device"
done
mkdir dev/pts
mount -t devpts -o newinstance,ptmxmode=0666 devpts dev/pts
ln -s pts/ptmx dev/ptmx
ln -s /proc/self/fd dev/fd
pivot_root . .outside
cd /material
umount -l /.outside
exec env -i PATH=/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
  DEBIAN_FRONTEND=noninteractive "$@"
