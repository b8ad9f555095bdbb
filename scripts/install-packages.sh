#!/bin/sh
# install-packages.sh LIST: installs the missing Debian packages of the file LIST (packages.txt explains its format),
# with sudo unless run as root. When none is missing, it prints nothing and needs no network. Without dpkg it installs
# nothing and only lists the missing programs.
set -eu

lines() {
  grep -v '^#' "$list"
}

# Fails if a program is missing.
name_missing_programs() {
  missing=0
  while read -r _ program words; do
    if [ -n "$program" ] && ! command -v "$program" >/dev/null; then
      echo "missing: $words" >&2
      missing=1
    fi
  done
  return "$missing"
}

list=$1
if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  lines | name_missing_programs
  exit
fi

missing=
# shellcheck disable=SC2013  # names of packages have no spaces
for package in $(lines | cut -d ' ' -f 1); do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "missing packages:$missing; install them as root (apt-get install$missing), or install sudo" >&2
    exit 1
  fi
  as_root=sudo
fi
echo "installing missing packages:$missing"
$as_root apt-get update -qq
# shellcheck disable=SC2086  # the list is meant to be split
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
