#!/bin/sh
# fuzz.sh BUILD SECONDS [NAME…]: runs all fuzzers, or those named, one after the other, SECONDS each, starting from
# their seeds. New inputs stay in BUILD/corpus/NAME. An input that shows an error is added to the seeds, so that the
# tests use it.
set -eu
build=$1
seconds=$2
shift 2
if [ $# -eq 0 ]; then
  for directory in fuzz/seeds/*; do set -- "$@" "${directory##*/}"; done
fi

# Freed memory is kept for far longer than one execution anyway, and an input that shows an error can be run again by
# hand, which prints whole stacks. Both cost half of the time.
export ASAN_OPTIONS="quarantine_size_mb=8:malloc_context_size=2:${ASAN_OPTIONS:-}"

broken=
for name in "$@"; do
  program=$build/fuzz/fuzz_$name
  if [ ! -x "$program" ]; then
    echo "$name: no such fuzzer; the directories in fuzz/seeds have the names of those that there are" >&2
    exit 1
  fi
  corpus=$build/corpus/$name
  mkdir -p "$corpus"
  dictionary=fuzz/dictionaries/$name.dict
  [ -f "$dictionary" ] || dictionary=
  echo "$name: $seconds seconds"
  "$program" -max_total_time="$seconds" -max_len=512 -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
    -close_fd_mask=2 ${dictionary:+"-dict=$dictionary"} -artifact_prefix="fuzz/seeds/$name/found-" "$corpus" "fuzz/seeds/$name" \
    2>"$corpus.log" || broken="$broken $name"
  grep -E 'DONE|ERROR|stat::(number_of_executed_units|average_exec_per_sec)' "$corpus.log" || true
done
[ -z "$broken" ] && exit 0
echo "broken:$broken; the inputs are in fuzz/seeds/NAME/found-…, the reports in $build/corpus/NAME.log" >&2
exit 1
