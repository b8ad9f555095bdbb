#!/bin/sh
# inside.sh: what is tried in the fresh root file system, where the working directory holds the tree. The ordinary user
# can install no packages, and goes on with what root has built.
set -eu

try() {
  "$@" make demo
  "$@" make test
  scripts/skipped-tests.sh build/release/Testing/Temporary/LastTest.log
}

apt-get -qq update
apt-get -qq install -y --no-install-recommends make
echo "--- as root ---"
try env
useradd --create-home builder
chown -R builder: .
echo "--- as an ordinary user ---"
try setpriv --reuid=builder --regid=builder --clear-groups env HOME=/home/builder
