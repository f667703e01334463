#!/usr/bin/env bash
# Runs the C-interface fuzzer for the given number of seconds, starting from the kept
# corpus (fuzz/corpus) with the keyword dictionary. A crash, leak, sanitizer report or hang
# fails the run, and so does a slow or huge unit: one input taking more than 2 s or the
# process growing past 1 GB (-timeout, -rss_limit_mb). New inputs go to the build tree's
# work corpus, never into fuzz/corpus: minimise them into it with `make fuzz-merge`.
set -euo pipefail
fuzzer=${1:?usage: run-fuzz.sh FUZZER SECONDS}
seconds=${2:-60}
work=$(dirname "$fuzzer")/fuzz-work
mkdir -p "$work/corpus"
source_dir="$(cd "$(dirname "$0")/.." && pwd)"
cp -n "$source_dir/fuzz/corpus/"* "$work/corpus/" 2>/dev/null || true
export BARCODE_ORV_QUIET=1
export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1}
"$fuzzer" -max_total_time="$seconds" -timeout=2 -rss_limit_mb=1024 -max_len=1024 \
  -print_final_stats=1 -dict="$source_dir/fuzz/c_interface.dict" -artifact_prefix="$work/" "$work/corpus" 2> "$work/fuzz.log" || {
  status=$?
  tail -60 "$work/fuzz.log"
  echo "fuzzing failed (status $status); artifacts in $work" >&2
  exit "$status"
}
grep -E "^stat::number_of_executed_units|^Done" "$work/fuzz.log" || tail -3 "$work/fuzz.log"
