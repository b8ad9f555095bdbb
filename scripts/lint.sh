#!/bin/sh
# lint.sh BUILD: checks the sources with clang-format, components.py, shellcheck, cppcheck and clang-tidy, and builds the
# product in BUILD, which has the compile commands.
set -eu
build=$1
jobs=$(nproc)

sources() {
  git ls-files --cached --others --exclude-standard "$@"
}

echo "clang-format"
sources '*.cc' '*.h' | xargs clang-format --dry-run -Werror

echo "components"
scripts/components.py

echo "shellcheck"
sources '*.sh' '*.bash' .ci/run | xargs shellcheck

echo "cppcheck"
cppcheck --quiet --error-exitcode=1 --enable=warning,performance,portability --inline-suppr --std=c++17 \
  --suppressions-list=scripts/cppcheck-suppressions.txt -j "$jobs" -I . -I include -I platform/include \
  base plugin util quarnel_util platform orvelbox bench

echo "clang"
cmake --build "$build" --parallel "$jobs"

echo "clang-tidy"
sources 'plugin/*.cc' 'util/*.cc' 'quarnel_util/*.cc' 'platform/*.cc' 'orvelbox/*.cc' |
  xargs -n 1 -P "$jobs" clang-tidy -p "$build" --quiet --warnings-as-errors='*'

echo "lint passed"
