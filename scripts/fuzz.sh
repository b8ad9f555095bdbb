#!/bin/sh
# fuzz.sh BUILD LIMIT [NAME…]: runs all fuzzers, or those named, one after the other, and says what is new. LIMIT is
# libFuzzer's -max_total_time=SECONDS or -runs=NUMBER, for each of them. Each starts from its seeds and from what earlier
# runs left in BUILD/corpus/NAME. An input that shows an error is added to the seeds, so that the tests use it.
set -eu
build=$1
limit=$2
shift 2
if [ $# -eq 0 ]; then
  for directory in fuzz/seeds/*; do set -- "$@" "${directory##*/}"; done
fi

# Less freed memory is kept, which is still enough for many executions, and no stacks: an input that shows an error can
# be run again by hand, which prints them. The two would take half of the time.
export ASAN_OPTIONS="quarantine_size_mb=8:malloc_context_size=0:${ASAN_OPTIONS:-}"

count() { find "$1" -type f | wc -l; }

# report NAME NEW: what the log on standard input says of the beginning and of the end.
report() {
  awk -v name="$1" -v new="$2" '
    /^#[0-9]+\t/ {
      executions = substr($1, 2)
      for (i = 2; i < NF; ++i) now[$i] = $(i + 1)
      if ($2 == "INITED") for (word in now) first[word] = now[word]
    }
    END {
      speed = now["exec/s:"] > 0 ? now["exec/s:"] "/s" : "within a second"
      printf "%s: %d executions, %s, edges %d -> %d, features %d -> %d, %d new inputs\n", name, executions, speed,
             first["cov:"], now["cov:"], first["ft:"], now["ft:"], new
    }'
}

broken=
for name in "$@"; do
  program=$build/fuzz/fuzz_$name
  if [ ! -x "$program" ]; then
    echo "$name: no such fuzzer; the directories in fuzz/seeds have the names of those that there are" >&2
    exit 1
  fi
  corpus=$build/corpus/$name
  mkdir -p "$corpus"
  before=$(count "$corpus")
  dictionary=fuzz/dictionaries/$name.dict
  [ -f "$dictionary" ] || dictionary=
  # Whole archives and logs are longer than other inputs.
  case $name in archive) longest=2048 ;; log_facts) longest=1024 ;; *) longest=512 ;; esac
  "$program" "$limit" -max_len=$longest -timeout=20 -rss_limit_mb=2048 -close_fd_mask=2 \
    ${dictionary:+"-dict=$dictionary"} -artifact_prefix="fuzz/seeds/$name/found-" "$corpus" "fuzz/seeds/$name" \
    2>"$corpus.log" || broken="$broken $name"
  report "$name" $(($(count "$corpus") - before)) <"$corpus.log"
  grep ERROR "$corpus.log" || true
done
[ -z "$broken" ] && exit 0
echo "broken:$broken; the inputs are in fuzz/seeds/NAME/found-…, the reports in $build/corpus/NAME.log" >&2
exit 1
