#!/bin/sh
# sysroot.sh ARCHITECTURE DIRECTORY: unpacks into DIRECTORY the libraries of packages.txt and their dependencies from
# Debian for that architecture. apt-get uses its own files below DIRECTORY, so the machine's package lists and
# architectures do not change and no root is needed. Does nothing when everything exists already.
set -eu

architecture=$1
sysroot=$2
packages="libc6-dev $(grep -e '-dev$' "$(dirname "$0")/packages.txt" | tr '\n' ' ')"
made=$sysroot/packages.txt
[ "$(cat "$made" 2>/dev/null)" != "$packages" ] || exit 0

rm -rf --one-file-system "$sysroot"
mkdir -p "$sysroot/usr/lib"
sysroot=$(cd "$sysroot" && pwd)
# Programs and libraries are below /usr; the old directories are links to it.
ln -s usr/lib "$sysroot/lib"

apt=$sysroot/apt
mkdir -p "$apt/lists/partial" "$apt/archives/partial"
: >"$apt/status"
private_apt_get() {
  apt-get -o "APT::Architecture=$architecture" -o "APT::Architectures=$architecture" -o APT::Sandbox::User= \
    -o "Dir::State=$apt" -o "Dir::State::status=$apt/status" -o "Dir::Cache=$apt" -o Debug::NoLocking=1 -qq "$@"
}
echo "fetching Debian's libraries for $architecture"
private_apt_get update || echo "sysroot: going on with the indexes that came" >&2
# shellcheck disable=SC2086  # the list is meant to be split
private_apt_get --yes --no-install-recommends --download-only install $packages

for package in "$apt"/archives/*.deb; do
  dpkg-deb --fsys-tarfile "$package" | tar --extract --directory "$sysroot" --keep-directory-symlink --no-same-owner
done
# A link that begins with "/" would lead out of the sysroot.
find "$sysroot/usr/lib" -type l -lname '/*' | while read -r link; do
  ln -snf --relative "$sysroot$(readlink "$link")" "$link"
done
rm -rf --one-file-system "$apt"
echo "$packages" >"$made"
