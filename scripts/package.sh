#!/bin/sh
# package.sh BUILD: builds the Debian packages of the build directory BUILD (preset "package") in BUILD/packages. Checks
# them with lintian, and the options of the compiler and the linker with blhc. All times in the packages are that of the
# changelog's newest entry, so that they are reproducible.
set -eu

build=$(cd "$1" && pwd)
changelog=$(cd "$(dirname "$0")/../packaging" && pwd)/changelog
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$changelog" -S Timestamp)
export SOURCE_DATE_EPOCH

# All of Debian's hardening options, but no debug information. blhc reads logs that begin like a package's.
{
  echo "dpkg-buildpackage: info: source package morvath"
  ninja -C "$build" -t commands all
} >"$build/commands"
blhc --all --ignore-flag -g "$build/commands"

umask 022 # the packages' own entries carry the modes of the files that they are made from
rm -rf "$build/packages"
(cd "$build" && cpack --config CPackConfig.cmake)
lintian --fail-on error "$build"/packages/*.deb
