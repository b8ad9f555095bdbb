#!/bin/sh
# library-size.sh BUILD: the size of the plug-in of that build in bytes, stripped; the number of its relocations, which
# every process that loads it pays for; and the processor.
set -eu

tool() {
  sed -n "s/^CMAKE_$1:FILEPATH=//p" "$build/CMakeCache.txt"
}

build=$1
stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
"$(tool STRIP)" -o "$stripped" "$build/plugin/libmorvath.so"
readelf=$(tool READELF)
relocations=$("$readelf" --wide --relocs "$stripped" | grep -c '^[0-9a-f]\{8,\} ')
processor=$("$readelf" --file-header "$stripped" | sed -n 's/^ *Machine: *//p')
echo "$(wc -c <"$stripped") $relocations $processor"
