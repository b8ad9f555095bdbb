#!/bin/sh
# install-packages.sh LIST: installs the Debian packages of the file LIST (one a line, "#" begins a comment) that are
# missing, with sudo where the caller is not root. Says nothing and needs no network when none is.
set -eu

missing=
# shellcheck disable=SC2013  # the names of packages have no blanks
for package in $(grep -v '^#' "$1"); do
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
