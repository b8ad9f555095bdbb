#!/usr/bin/env bash
# Makes the pictures of README.md out of what orvelbox prints: scripts/pictures.sh ORVELBOX DIRECTORY writes check.svg (the
# table of a check) and trace.svg (the timeline of an install) into DIRECTORY.
set -euo pipefail
orvelbox=$(realpath "$1")
pictures=$(realpath "$2")

desk=$(mktemp -d)
trap 'rm -rf "$desk"' EXIT
cd "$desk"

export ORVELBOX_DEVICE=$desk/device
"$orvelbox" init --quiet
platform=$ORVELBOX_DEVICE/root/usr/share/dotnet.orvel
mkdir -p shop/bin
for dll in Newtonsoft.Json Shop System.Text.Json; do echo "the package's $dll" >"shop/bin/$dll.dll"; done
echo "the TV's" | tee "$platform/framework/Newtonsoft.Json.dll" >"$platform/netcoreapp/System.Text.Json.dll"
cat >shop/orvel-manifest.xml <<'END'
<manifest package="org.example.shop" version="1.0.0">
  <ui-application appid="org.example.shop.main" exec="Shop.dll" type="dotnet-inhouse"/>
</manifest>
END

# A terminal's text, of which the lines after the table are left out.
draw_text() {
  local line x=10 y=0
  local -a lines=()
  while IFS= read -r line; do lines+=("$line"); done
  echo "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"960\" height=\"$((${#lines[@]} * 18 + 14))\">"
  echo '<style>text{font:13px monospace;fill:#e6e6e6;white-space:pre}</style>'
  echo '<rect width="100%" height="100%" rx="6" fill="#16181d"/>'
  for line in "${lines[@]}"; do
    line=${line//&/\&amp;} line=${line//</\&lt;}
    echo "<text x=\"$x\" y=\"$((y += 18))\" xml:space=\"preserve\">$line</text>"
  done
  echo '</svg>'
}

{
  echo '$ orvelbox check shop'
  "$orvelbox" check shop || [ $? = 1 ]
} | sed '/To keep them out/,$d' | draw_text >"$pictures/check.svg"
"$orvelbox" --quiet --trace trace.json install shop
"$orvelbox" trace trace.json --output "$pictures/trace.svg"
