#!/bin/sh
# test-container.sh BUILD: runs the demo and the tests as in a container without special rights, where the kernel refuses
# namespaces and mounts: as root, which works in place, and as an ordinary user, which cannot and must get a clear error.
# Ends with a list of the skipped tests and the reasons. The first part needs root; when root runs the second one, it
# needs a mount namespace.
set -eu

cd "$(dirname "$0")/.."
build=$1
log=$build/Testing/Temporary/LastTest.log
scripts=$PWD/scripts
contained=$PWD/$build/tests/host/plain_container
work=$(mktemp -d)
trap 'rm -rf --one-file-system "$work"' EXIT
trap 'exit 130' INT TERM HUP

fail() {
  echo "test-container: $1" >&2
  exit 1
}

expect_nothing_left() {
  for path in /usr/share/dotnet.orvel /opt/usr /etc/release; do
    if [ -e "$path" ] || [ -L "$path" ]; then fail "$path is there; working in place needs it not to be"; fi
  done
}

as_root() {
  "$contained" make demo
  "$contained" ctest --preset release --parallel "$(nproc)"
}

# Copies the tree with its build for the ordinary user.
copy_tree() {
  mkdir -p "$work/tree/build"
  find . -mindepth 1 -maxdepth 1 ! -name build ! -name .git -exec cp -a -t "$work/tree" {} +
  cp -a "$build" "$work/tree/build"
  chmod 755 "$work"
  chown -R 65534:65534 "$work/tree"
}

# as_ordinary_user COMMAND…: COMMAND is a prefix that runs a command as the ordinary user.
as_ordinary_user() {
  if "$@" "$contained" make demo >"$work/demo" 2>&1; then fail "the demo passes, without any way to the fixed paths"; fi
  cat "$work/demo"
  grep -q "no private namespaces here (.*): allow user namespaces .*, or run as root" "$work/demo" ||
    fail "the demo does not say what to do"
  "$@" "$contained" ctest --preset release --parallel "$(nproc)"
}

expect_nothing_left
user_log=$log
if [ "$(id -u)" -ne 0 ]; then
  as_ordinary_user env
else
  as_root
  expect_nothing_left
  cp "$log" "$work/log-of-root"
  if unshare --mount true; then
    copy_tree
    user_log=$work/tree/$log
    as_ordinary_user unshare --mount "$scripts/test-container/as-ordinary-user.sh" "$work/tree"
    expect_nothing_left
  else
    user_log=
  fi
fi

echo "=== As root ==="
if [ -f "$work/log-of-root" ]; then
  "$scripts/skipped-tests.sh" "$work/log-of-root" "$scripts/test-container/skipped-by-root.txt"
else
  echo "left out: this is no root"
fi
echo "=== As an ordinary user ==="
if [ -n "$user_log" ]; then
  "$scripts/skipped-tests.sh" "$user_log"
else
  echo "left out: this needs a mount namespace"
fi
echo "test-container: passed; nothing is left at the fixed paths"
