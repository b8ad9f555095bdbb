#!/bin/sh
# find | sort | comm: the package's DLLs whose names the platform has.
export LC_ALL=C
platform=$(mktemp)
find "$2" -type f -printf '%f\n' | sort -u >"$platform"
find "$1" -type f -name '*.dll' -printf '%f\n' | sort -u | comm -12 - "$platform"
rm -f "$platform"
