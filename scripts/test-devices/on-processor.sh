#!/bin/sh
# on-processor.sh PROCESSOR SYSROOT COMMAND…: runs the command where the kernel starts programs for that processor with
# qemu, through a binfmt_misc table in a new user namespace (Linux 6.7 and later). The machine's own table does not
# change. Users and groups are those of the caller.
set -eu

# The first 20 bytes of a program: 1 or 2 is its word size, 28 or B7 means 32-bit or 64-bit ARM.
rule() {
  case $processor in
    armhf) width=01 machine=28 qemu=qemu-arm ;;
    arm64) width=02 machine=b7 qemu=qemu-aarch64 ;;
  esac
  zeros='\x00\x00\x00\x00\x00\x00\x00\x00'
  ones='\xff\xff\xff\xff\xff\xff\xff'
  printf '%s' ":$processor:M::\x7fELF\x$width\x01\x01\x00$zeros\x02\x00\x$machine\x00:" \
    "$ones\x00\x00$ones\xfe\xff\xff\xff:$(command -v "$qemu"):F"
}

# Runs as the namespace's root, after its users and groups are mapped.
inside() {
  mount -t binfmt_misc binfmt_misc /proc/sys/fs/binfmt_misc
  rule >/proc/sys/fs/binfmt_misc/register
  export QEMU_LD_PREFIX="$sysroot"
  unset ON_PROCESSOR_USER ON_PROCESSOR_GROUP
  [ "$user" -ne 0 ] || exec "$@"
  exec unshare --user --map-user="$user" --map-group="$group" "$@"
}

# Root keeps all its users and groups; any other user becomes root and has no others.
tell_ids() {
  if [ "$user" -eq 0 ]; then
    awk '{ print $1, $1, $3 }' "/proc/self/$1"
  else
    echo "0 $2 1"
  fi >"/proc/$process/$1"
}

user=${ON_PROCESSOR_USER:-$(id -u)}
group=${ON_PROCESSOR_GROUP:-$(id -g)}
processor=$1 sysroot=$2
shift 2
if [ -n "${ON_PROCESSOR_USER:-}" ]; then
  inside "$@"
fi
unshare --user true
steps=$(mktemp -d)
trap 'rm -rf "$steps"' EXIT
mkfifo "$steps/made" "$steps/known"
# shellcheck disable=SC2016  # for the shell in the namespace
ON_PROCESSOR_USER=$user ON_PROCESSOR_GROUP=$group unshare --user --mount sh -c \
  'echo >"$0/made" && read -r _ <"$0/known" && exec "$@"' "$steps" "$0" "$processor" "$sysroot" "$@" &
process=$!
read -r _ <"$steps/made"
[ "$user" -eq 0 ] || echo deny >"/proc/$process/setgroups"
tell_ids uid_map "$user"
tell_ids gid_map "$group"
echo >"$steps/known"
wait "$process"
