#!/bin/sh
# test-places.sh BUILD [PLACE…]: runs the core of the tests where a clock, a file mask, a locale or a path is unusual, in
# each of the places below or in those named. Names the skipped tests of each.
set -eu

cd "$(dirname "$0")/.."
build=$PWD/$1
shift
places="clock mask-077 mask-000 locale-c locale-utf8 locale-turkish names file-system build"
work=$(mktemp -d)
memory=$(mktemp -d -p /dev/shm)
chmod 755 "$work" "$memory" # some tests work there as another user
trap 'rm -rf --one-file-system "$work" "$memory"' EXIT
trap 'exit 130' INT TERM HUP

fail() {
  echo "test-places: $1" >&2
  exit 1
}

# core COMMAND…: COMMAND is a prefix that runs a command in the place.
core() {
  "$@" ctest --test-dir "$build" --output-on-failure --parallel "$(nproc)" --label-exclude '^heavy$' \
    --tests-regex '^(unit|integration|host|orvelbox|e2e)_tests\.' >"$work/log" 2>&1 || { cat "$work/log"; return 1; }
  grep -E 'tests passed' "$work/log"
  scripts/skipped-tests.sh "$build/Testing/Temporary/LastTest.log"
}

# The clock is past the seconds that 32 bits hold. The system's clock for timeouts is left alone.
in_2040() {
  seconds=$(($(date -d '2040-02-29 12:00' +%s) - $(date +%s)))
  set -- env FAKETIME_DONT_FAKE_MONOTONIC=1 faketime -f "+$seconds"
  [ "$("$@" date +%Y)" = 2040 ] || fail "the clock cannot be set"
  core "$@"
}

in_locale() {
  [ "$(LC_ALL=$1 LOCPATH=$2 locale charmap 2>/dev/null)" = "$3" ] || fail "there is no locale $1"
  core env LC_ALL="$1" LOCPATH="$2"
}

below_odd_names() {
  odd="$work/it's \"odd\" \$HOME; #1 100% Zoë 日本"
  mkdir "$odd"
  core env TMPDIR="$odd"
}

on_another_file_system() {
  [ "$(stat -c %d "$memory")" != "$(stat -c %d "$build")" ] || fail "/dev/shm is the build's file system"
  core env TMPDIR="$memory"
}

# Builds the product in a folder whose path has all that CMake can work with, and runs the demo there.
built_below_odd_names() {
  tree="$work/it's odd, Zoë 日本"
  mkdir "$tree"
  find . -mindepth 1 -maxdepth 1 ! -name build ! -name .git -exec cp -a -t "$tree" {} +
  (cd "$tree" && make build demo) >"$work/log" 2>&1 || { cat "$work/log"; return 1; }
  echo "the demo passed"
}

run() {
  case $1 in
    clock) in_2040 ;;
    mask-077) (umask 077; core env) ;;
    mask-000) (umask 000; core env) ;;
    locale-c) in_locale C '' ANSI_X3.4-1968 ;;
    locale-utf8) in_locale C.UTF-8 '' UTF-8 ;;
    locale-turkish) in_locale tr_TR.UTF-8 "$build/locales" UTF-8 ;;
    names) below_odd_names ;;
    file-system) on_another_file_system ;;
    build) built_below_odd_names ;;
    *) fail "\"$1\" is none of the places: $places" ;;
  esac
}

# shellcheck disable=SC2086  # the list is meant to be split
[ $# -gt 0 ] || set -- $places
for place; do
  echo "=== $place ==="
  run "$place"
done
echo "test-places: passed"
