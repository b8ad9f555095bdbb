#!/bin/sh
# includes.sh [HEADER…]: asks include-what-you-use whether each header of the product, or those named, includes all that
# it names and no more. Forward declarations are left to the author.
set -eu

if [ $# -eq 0 ]; then
  headers=$(git ls-files --cached --others --exclude-standard 'base/*.h' 'plugin/*.h' 'util/*.h' 'include/*.h' \
    'quarnel_util/*.h' 'platform/*.h' 'orvelbox/*.h')
  printf '%s\n' "$headers" | xargs -n 1 -P "$(nproc)" "$0"
  exit
fi

libxml=$(pkg-config --cflags libxml-2.0)
for header in "$@"; do
  # shellcheck disable=SC2086 # flags are several words
  report=$(include-what-you-use -std=c++17 -x c++ -DORVEL_NAMESPACE_HOST='""' -I . -I include -I platform/include \
    $libxml -Xiwyu --error -Xiwyu --no_fwd_decls -Xiwyu --mapping_file=scripts/includes.imp "$header" 2>&1) ||
    { echo "$report"; exit 1; }
done
