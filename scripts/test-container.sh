#!/bin/sh
# test-container.sh BUILD: shows the demo and passes the tests as in a container without special rights, where the kernel
# refuses namespaces and mounts: as root, who works in place, and as an ordinary user, who cannot and has to be told so.
# Ends with what was skipped and why. An ordinary user's own run leaves root's part out.
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

# The tree with what is built, for the user "nobody".
copy_tree() {
  mkdir -p "$work/tree/build"
  find . -mindepth 1 -maxdepth 1 ! -name build ! -name .git -exec cp -a -t "$work/tree" {} +
  cp -a "$build" "$work/tree/build"
  chmod 755 "$work"
  chown -R nobody: "$work/tree"
}

# In the tree of whoever runs this, without arguments; COMMAND… lends the user a tree.
as_ordinary_user() {
  if "$@" "$contained" make demo >"$work/demo" 2>&1; then fail "the demo passes, without any way to the fixed paths"; fi
  cat "$work/demo"
  grep -q "no private namespaces here (.*): allow user namespaces .*, or run as root" "$work/demo" ||
    fail "the demo does not say what to do"
  "$@" "$contained" ctest --preset release --parallel "$(nproc)"
}

expect_nothing_left
if [ "$(id -u)" -ne 0 ]; then
  as_ordinary_user
  echo "=== as an ordinary user (root's part was left out; it takes root) ==="
  "$scripts/skipped-tests.sh" "$log"
else
  as_root
  expect_nothing_left
  cp "$log" "$work/log-of-root"
  copy_tree
  as_ordinary_user unshare --mount "$scripts/test-container/lend.sh" "$work/tree"
  expect_nothing_left
  echo "=== as root ==="
  "$scripts/skipped-tests.sh" "$work/log-of-root" "$scripts/test-container/skipped-by-root.txt"
  echo "=== as an ordinary user ==="
  "$scripts/skipped-tests.sh" "$work/tree/$log"
fi
echo "test-container: passed; nothing is left at the fixed paths"
