#!/usr/bin/env bash
# Rebuilds fuzz/corpus as the smallest set of inputs that keeps the edge coverage of the kept
# corpus plus everything the fuzz runs found in the build tree (libFuzzer -merge=1).
set -euo pipefail
fuzzer=${1:?usage: merge-fuzz-corpus.sh FUZZER}
source_dir="$(cd "$(dirname "$0")/.." && pwd)"
work=$(dirname "$fuzzer")/fuzz-work
merged=$(mktemp -d)
trap 'rm -rf "$merged"' EXIT
export BARCODE_ORV_QUIET=1
"$fuzzer" -merge=1 -use_counters=0 -use_value_profile=0 -max_len=1024 -timeout=20 -rss_limit_mb=4096 "$merged" \
  "$source_dir/fuzz/corpus" "$work/corpus" 2> "$work/merge.log"
# Past crash reproducers stay whatever their coverage.
find "$source_dir/fuzz/corpus" -type f -regextype posix-extended ! -regex '.*/[0-9a-f]{40}' -exec cp {} "$merged/" \;
find "$source_dir/fuzz/corpus" -type f -regextype posix-extended -regex '.*/[0-9a-f]{40}' -delete
cp "$merged"/* "$source_dir/fuzz/corpus/"
echo "fuzz/corpus: $(ls "$source_dir/fuzz/corpus" | wc -l) inputs, $(du -sh "$source_dir/fuzz/corpus" | cut -f1)"
