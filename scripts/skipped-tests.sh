#!/bin/sh
# skipped-tests.sh LOG [ALLOWED]: counts the tests that a run of CTest skipped, by reason and suite. LOG is CTest's log
# (Testing/Temporary/LastTest.log in the build). ALLOWED is a file with a regular expression of test names per line ("#"
# begins a comment); a skipped test that none of them matches is an error.
set -eu
log=$1

# Lines of "reason<tab>test". GoogleTest prints the reason in the line after the location of the skip.
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
