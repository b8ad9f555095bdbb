#!/bin/sh
# test-devices.sh: builds for each processor of the devices, with the commands that docs/device-build.md shows, and
# passes under qemu what qemu can run of the tests. Tells in the end what was skipped, and why.
set -eu

# The indented lines of docs/device-build.md.
commands() {
  sed -n 's/^    //p' docs/device-build.md | sed "s/^processor=[a-z0-9]*/processor=$1/"
}

# "TEST: REASON" for each test that was skipped in that log of CTest's.
skipped() {
  awk '/: Skipped$/ { getline reason } /^\[  SKIPPED \] .* ms\)$/ { print $4 ": " reason }' "$1"
}

for processor in armhf arm64; do
  echo "test-devices: $processor"
  sh -euc "$(commands $processor)"
  ctest --preset $processor --parallel "${JOBS:-$(nproc)}"
done
for processor in armhf arm64; do
  log=build/$processor/Testing/Temporary/LastTest.log
  skipped "$log" | sed "s/^/skipped on $processor: /"
  echo "test-devices: passed on $processor, $(skipped "$log" | wc -l) tests skipped"
done
