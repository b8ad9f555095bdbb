#!/bin/sh
# skipped-tests.sh LOG [ALLOWED]: tells how many tests a run of CTest skipped, under the reasons and by suites. LOG is the
# log that it left (Testing/Temporary/LastTest.log in the build). With a file ALLOWED, which holds a regular expression of
# test names a line ("#" begins a comment), fails where none matches a test that was skipped.
set -eu
log=$1

# Lines of "reason<tab>test": GoogleTest puts the reason in the line after the place of the skip.
skipped=$(awk '/^[0-9]+\/[0-9]+ Testing: / { test = $3 } /: Skipped$/ { getline; print $0 "\t" test }' "$log" | sort -u)
count=$(grep -c '^Skip regular expression found' "$log" || true)
told=$(printf '%s' "$skipped" | cut -f 2 | sort -u | grep -c . || true)
echo "$count tests were skipped"
printf '%s\n' "$skipped" | awk -F '\t' '
  NF == 2 { suite = $2; sub(/\.[^.]*$/, "", suite); ++counts[$1]; ++suites[$1 "\t" suite] }
  END {
    for (reason in counts) {
      print "  " counts[reason] " because: " reason
      for (key in suites) { split(key, parts, "\t"); if (parts[1] == reason) print "    " suites[key] " of " parts[2] }
    }
  }'
if [ "$count" -ne "$told" ]; then
  echo "skipped-tests: $count tests were skipped, but $told give a reason" >&2
  exit 1
fi
[ $# -gt 1 ] || exit 0
patterns=$(mktemp)
trap 'rm -f "$patterns"' EXIT
grep -v '^#' "$2" >"$patterns"
if printf '%s\n' "$skipped" | cut -f 2 | grep . | grep -vxEf "$patterns"; then
  echo "skipped-tests: those above are not to be skipped here ($2)" >&2
  exit 1
fi
