#!/bin/sh
# test-devices.sh: builds for each processor of the devices with the commands in docs/device-build.md, and runs the
# tests that work under qemu. Ends with a list of the skipped tests and the reasons.
set -eu

processors="armhf arm64"
programs="unit_tests integration_tests hostile_tests hardening_tests abi_tests fault_tests orvelbox_tests"
# These start programs of the build.
starters='^integration_tests\.(CacheEvents\.|Loading\.a_programs_own_platform_functions)'

# The indented lines of docs/device-build.md.
commands() {
  sed -n 's/^    //p' docs/device-build.md | sed "s/^processor=[a-z0-9]*/processor=$processor/"
}

on_processor() {
  scripts/test-devices/on-processor.sh "$processor" "$PWD/build/sysroot/$processor" "$@"
}

pass_tests() {
  # shellcheck disable=SC2086  # the list is meant to be split
  cmake --build --preset "$processor" --target $programs
  set -- ctest --preset "$processor" --parallel "${JOBS:-$(nproc)}"
  if on_processor true; then
    on_processor "$@"
  else
    "$@" --exclude-regex "$starters"
  fi
}

# "TEST: REASON" for each test that did not run. Call it only once: CTest empties its log when it lists the tests.
skipped() {
  log=build/$processor/LastTest.log
  mv "build/$processor/Testing/Temporary/LastTest.log" "$log"
  awk '/: Skipped$/ { getline reason } /^\[  SKIPPED \] .* ms\)$/ { print $4 ": " reason }' "$log"
  ctest --preset "$processor" --show-only | sed -n 's/^ *Test *#[0-9]*: //p' | grep -E "$starters" |
    while read -r test; do
      grep -qF " Test: $test" "$log" || echo "$test: this kernel starts no programs for $processor (Linux 6.7 and later do)"
    done
}

for processor in $processors; do
  echo "test-devices: $processor"
  sh -euc "$(commands)"
  pass_tests
done
for processor in $processors; do
  list=build/$processor/skipped.txt
  skipped >"$list"
  sed "s/^/skipped on $processor: /" "$list"
  echo "test-devices: passed on $processor, $(wc -l <"$list") tests skipped"
done
