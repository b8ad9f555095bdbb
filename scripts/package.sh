#!/bin/sh
# package.sh BUILD: builds the Debian packages of the build directory BUILD (preset "package") in BUILD/packages, and
# checks them with lintian. All times in them are that of the changelog's newest entry, so that the packages are
# reproducible.
set -eu

build=$(cd "$1" && pwd)
changelog=$(cd "$(dirname "$0")/../packaging" && pwd)/changelog
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog -l "$changelog" -S Timestamp)
export SOURCE_DATE_EPOCH

umask 022 # the packages' own entries carry the modes of the files that they are made from
rm -rf "$build/packages"
(cd "$build" && cpack --config CPackConfig.cmake)
lintian --fail-on error "$build"/packages/*.deb
