#!/bin/sh
# demo.sh BUILD: shows on a new device what the plug-in does to packages. BUILD is a build directory. Everything is
# created in a temporary directory, which is removed at the end. Fails at the first unexpected result.
set -eu

build=$(cd "$1" && pwd)
material=$(cd "$(dirname "$0")/demo" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 130' INT TERM HUP
cd "$work"
PATH="$build/orvelbox:$PATH"
ORVELBOX_DEVICE="$work/device"
export PATH ORVELBOX_DEVICE
platform_on_device=device/root/usr/share/dotnet.orvel
cache_directory=device/root/opt/usr/home/owner/share/dotnet
packages_on_device=device/root/opt/usr/globalapps

# --- Printing and checking ---

heading() {
  printf '\n=== %s ===\n' "$1"
}

fail() {
  printf 'demo: %s\n' "$1" >&2
  exit 1
}

# run STATUS COMMAND…: shows the command and its output; its exit status must be STATUS.
run() {
  expected=$1
  shift
  printf '\n$ %s\n' "$*"
  status=0
  "$@" >"$work/output" 2>&1 || status=$?
  cat "$work/output"
  [ "$status" -eq "$expected" ] || fail "\"$*\" ended with exit status $status instead of $expected"
}

# expect TEXT: the last command must have printed TEXT.
expect() {
  grep -qF -- "$1" "$work/output" || fail "the output above lacks \"$1\""
}

# show_cache TPA COBA: shows both cache files; their entries must be exactly these.
show_cache() {
  run 0 orvelbox cache
  printf '%s' "[START]$1[END]" | cmp -s - "$cache_directory/TPA.txt" || fail "TPA.txt holds something else"
  printf '%s' "[START]$2[END]" | cmp -s - "$cache_directory/CoBA.txt" || fail "CoBA.txt holds something else"
}

# --- The assemblies, in the layout of assembly-names.txt ---

entries() {
  grep -v '^#' "$1"
}

# Unpacks the Debian packages into "$work/debian" without installing them.
fetch_assemblies() {
  mkdir "$work/archives" "$work/debian"
  # shellcheck disable=SC2046  # one argument per package is meant
  (cd "$work/archives" && timeout 120 apt-get -qq -o APT::Sandbox::User= -o Acquire::Retries=0 -o Acquire::http::Timeout=15 \
    download $(entries "$material/debian-packages.txt")) >"$work/fetch" 2>&1 || return 1
  for archive in "$work"/archives/*.deb; do
    dpkg-deb -x "$archive" "$work/debian" || return 1
  done
}

# put_assembly PATH: a real assembly of that name if there is one, otherwise a small file that contains the name.
put_assembly() {
  name=$(basename "$1")
  mkdir -p "$(dirname "$1")"
  if [ "$real" = no ]; then
    echo "$name" >"$1"
    return
  fi
  found=$(find "$work/debian" -type f -name "$name" | sort | head -n 1)
  [ -n "$found" ] || fail "the fetched packages hold no $name"
  cp "$found" "$1"
}

# setting NAME: the value of a build setting.
setting() {
  sed -n "s/^$1:STRING=//p" "$build/CMakeCache.txt"
}

lay_out_material() {
  for path in $(entries "$material/assembly-names.txt"); do
    put_assembly "$path"
  done
  for manifest in "$material"/manifests/*.xml; do
    sed -e "s/@DEVELOPER_HOST@/$(setting ORVEL_DEVELOPER_HOST)/" -e "s/@NAMESPACE_HOST@/$(setting ORVEL_NAMESPACE_HOST)/" \
      "$manifest" >"$(basename "$manifest" .xml)/orvel-manifest.xml"
  done
}

# --- The demonstration ---

introduction() {
  cat <<'TEXT'
On an Orvel TV the package manager loads a parser plug-in, libmorvath.so, and calls it whenever a package of a .NET
application is installed, upgraded or removed. The plug-in deletes DLLs that an application brings although the TV
has them, and keeps two cache files for the loader that starts applications. Here the TV is a directory on this
desk, and orvelbox is its package manager. Lines that begin with "###" are the plug-in's own.
TEXT
}

make_device() {
  heading "A device with the platform's assemblies"
  if [ "$real" = yes ]; then
    echo "The assemblies are real: they come out of Debian packages, fetched and unpacked, not installed."
  else
    echo "The Debian packages cannot be fetched here, so small files with the names of real assemblies stand in."
  fi
  run 0 orvelbox init --platform platform
  run 0 ls "$platform_on_device/netcoreapp" "$platform_on_device/framework" "$platform_on_device/d.pc" \
    "$platform_on_device/tvappapi"
}

gtk_root=/opt/usr/globalapps/org.example.gtksharp
gtk_tpa=:$gtk_root/shared/res/glib-sharp.dll:$gtk_root/shared/res/gtk-sharp.dll
gtk_coba=:$gtk_root/shared/res/

install_component() {
  heading "A component package: both cache files change (INSTALL, then CLEAN)"
  echo "The package shares its assemblies with others. Installing it adds them to the cache files, and the loader is"
  echo "restarted to read them. Before:"
  show_cache '' ''
  run 0 orvelbox install gtksharp
  expect "loader   restarted"
  echo
  echo "After:"
  show_cache "$gtk_tpa" "$gtk_coba"
}

install_application() {
  heading "An application with its own copies of DLLs (INSTALL, then CLEAN)"
  echo "The game brings three DLLs that the TV has already, and one that the component has."
  run 0 ls gbrainy-1.0/bin
  echo
  echo "What will become of them can be asked before the install, and so can what to change in the project file:"
  run 1 orvelbox check gbrainy-1.0
  expect "of 6 DLLs"
  expect "/usr/share/dotnet.orvel/netcoreapp/System.Core.dll"
  expect "<PackageReference Update=\"Mono.Posix\" ExcludeAssets=\"runtime\" />"
  run 0 orvelbox install gbrainy-1.0
  expect "removed  bin/System.Core.dll: the platform has /usr/share/dotnet.orvel/netcoreapp/System.Core.dll"
  expect "removed  bin/Mono.Posix.dll: the platform has /usr/share/dotnet.orvel/framework/Mono.Posix.dll"
  expect "kept     bin/gtk-sharp.dll: duplicates $gtk_root/shared/res/gtk-sharp.dll"
  echo
  echo "Two are gone from the installed package, and an information file stands in the place of each. The component's"
  echo "DLL lies in the read-write area, like the game itself, so the game keeps its copy of it. And the game keeps its"
  echo "ICSharpCode.SharpZipLib.dll, because the DLLs in the platform's d.pc/ never count as duplicates."
  run 0 ls "$packages_on_device/org.example.gbrainy/bin"
  run 0 cat "$packages_on_device/org.example.gbrainy/bin/System.Core.dll_deleted"
  expect "was deleted because /usr/share/dotnet.orvel/netcoreapp/System.Core.dll exists"
  run 0 orvelbox why org.example.gbrainy
  expect "removed   bin/Mono.Posix.dll"
  run 0 orvelbox list
}

upgrade_application() {
  heading "An upgrade (UPGRADE, then CLEAN)"
  echo "Version 1.1 leaves System.Core.dll out, as the information file asks, but still brings Mono.Posix.dll."
  run 0 orvelbox upgrade gbrainy-1.1
  expect "upgraded org.example.gbrainy 1.0 to 1.1"
  expect "removed  bin/Mono.Posix.dll"
  [ ! -e "$packages_on_device/org.example.gbrainy/bin/System.Core.dll_deleted" ] || fail "an old information file is there"
}

fail_debugged() {
  heading "A package under debugging: the install fails"
  echo "A developer's package holds the app-debugging privilege. For it a duplicate is an error, to be mended at once."
  run 1 orvelbox install debugged
  expect "INSTALL returned -1, UNDO returned 0"
  expect "bin/Newtonsoft.Json.dll: the platform has /usr/share/dotnet.orvel/framework/Newtonsoft.Json.dll"
  expect "bin/System.Xml.dll: the platform has /usr/share/dotnet.orvel/netcoreapp/System.Xml.dll"
  expect "Duplicated DLL found. Please refer guide : "
  [ ! -e "$packages_on_device/org.example.gbrainy.debugged" ] || fail "the failed package is still there"
  echo
  echo "Nothing of it stayed on the device. Without the two DLLs it installs:"
  run 0 rm debugged/bin/Newtonsoft.Json.dll debugged/bin/System.Xml.dll
  run 0 orvelbox install debugged
  expect "INSTALL returned 0, CLEAN returned 0"
}

uninstall_everything() {
  heading "Uninstalling (UNINSTALL, then CLEAN)"
  run 0 orvelbox uninstall org.example.gbrainy
  expect "UNINSTALL returned 0, CLEAN returned 0"
  run 0 orvelbox uninstall org.example.gtksharp
  expect "loader   restarted"
  echo
  echo "The component's entries are out of the cache files again:"
  show_cache '' ''
}

live_through() {
  heading "A whole life on a throw-away device"
  echo "Install, recovery, upgrade, uninstall and what lies between: whatever is left behind would be named."
  run 0 orvelbox test gbrainy-1.0 gbrainy-1.1
  expect "lived through without a trace"
  run 0 orvelbox cache verify
}

show_log() {
  heading "The device's log"
  echo "Every step of the plug-in is in the log. The errors among them:"
  run 0 orvelbox log --priority E
  expect "### Duplicated DLL found ###"
}

real=no # whether the assemblies are real ones
if fetch_assemblies; then real=yes; fi
lay_out_material
introduction
make_device
install_component
install_application
upgrade_application
fail_debugged
uninstall_everything
live_through
show_log
heading "Done: everything went as told"
