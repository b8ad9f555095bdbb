#!/bin/sh
# inside.sh: the test inside the fresh root file system; the working directory has the tree. The ordinary user cannot
# install packages and uses root's build.
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
