#!/bin/sh
# coverage.sh BUILD: runs the unit and hostile tests of a coverage build and reports which code of plugin/ and util/
# they execute: an HTML report in BUILD/coverage and one line. Fails below the project's limits.
set -eu
build=$1

find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" --tests-regex '^(unit|hostile)_tests\.' --parallel "$(nproc)" --quiet
mkdir -p "$build/coverage"
gcovr --root . --object-directory "$build" --filter 'base/' --filter 'plugin/' --filter 'util/' \
  --exclude-throw-branches --exclude-unreachable-branches \
  --html-details "$build/coverage/index.html" --json-summary "$build/coverage/summary.json" \
  --txt "$build/coverage/summary.txt" --fail-under-line 99 --fail-under-branch 95 || status=$?
python3 - "$build" <<'PYTHON'
import json, sys
build = sys.argv[1]
with open(f"{build}/coverage/summary.json") as file:
    summary = json.load(file)
print(f"plugin/ and util/: {summary['line_percent']} % of lines, {summary['branch_percent']} % of branches "
      f"({build}/coverage/index.html)")
PYTHON
exit "${status:-0}"
