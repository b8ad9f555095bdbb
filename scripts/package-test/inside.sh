#!/bin/sh
# inside.sh: the test inside the fresh root file system; the working directory has the packages. Fails at the first
# unexpected result.
set -eu

fail() {
  printf 'package-test: %s\n' "$1" >&2
  exit 1
}

# expect TEXT COMMAND…: COMMAND must succeed and print TEXT.
expect() {
  text=$1
  shift
  echo "\$ $*"
  "$@" >/tmp/output 2>&1 || { cat /tmp/output; fail "\"$*\" failed"; }
  cat /tmp/output
  grep -qF -- "$text" /tmp/output || fail "the output above lacks \"$text\""
}

install_packages() {
  if dpkg-query -W morvath orvelbox >/dev/null 2>&1; then fail "the root file system is not fresh"; fi
  apt-get -qq update
  apt-get -qq install -y --no-install-recommends ./*.deb >/tmp/output 2>&1 || { cat /tmp/output; fail "the packages do not install"; }
  dpkg-query -W morvath morvath-dev orvelbox
  dpkg --verify morvath morvath-dev orvelbox >/tmp/output
  [ ! -s /tmp/output ] || { cat /tmp/output; fail "dpkg finds the installed files changed"; }
}

check_libraries() {
  for file in $(dpkg -L morvath orvelbox | grep -e '/bin/' -e '\.so$' -e dotnet-loader); do
    if ldd "$file" | grep 'not found'; then fail "$file misses libraries"; fi
  done
}

live_a_package() {
  export ORVELBOX_DEVICE=/tmp/device
  mkdir -p /tmp/shop/bin
  echo "the shop's copy" >/tmp/shop/bin/Newtonsoft.Json.dll
  cat >/tmp/shop/orvel-manifest.xml <<'MANIFEST'
<manifest package="org.example.shop" version="1.0.0">
  <ui-application appid="org.example.shop.main" exec="Shop.dll" type="dotnet-inhouse"/>
</manifest>
MANIFEST
  expect "made the device" orvelbox init
  echo "the TV's copy" >/tmp/device/root/usr/share/dotnet.orvel/framework/Newtonsoft.Json.dll
  expect "removed  bin/Newtonsoft.Json.dll" orvelbox install /tmp/shop
  expect "org.example.shop" orvelbox list
  expect "Duplicated DLL found" orvelbox log
  expect "UNINSTALL returned 0, CLEAN returned 0" orvelbox uninstall org.example.shop
}

remove_packages() {
  dpkg -L morvath morvath-dev orvelbox | sort -u >/tmp/files
  apt-get -qq purge -y morvath morvath-dev orvelbox >/tmp/output 2>&1 || { cat /tmp/output; fail "the packages do not go"; }
  while read -r path; do
    if [ -f "$path" ] || [ -L "$path" ]; then fail "$path is left"; fi
  done </tmp/files
}

install_packages
check_libraries
live_a_package
remove_packages
