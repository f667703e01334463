#!/usr/bin/env bash
# Installs the build into a temporary prefix, then builds and runs what the README tells a
# user to build against it: the C example (pkg-config) and a CMake consumer
# (find_package), neither with LD_LIBRARY_PATH.
set -euo pipefail
build=${1:-build}
source_dir="$(cd "$(dirname "$0")/.." && pwd)"
prefix=$(mktemp -d)
work=$(mktemp -d)
trap 'rm -rf "$prefix" "$work"' EXIT
export BARCODE_ORV_QUIET=1

cmake --install "$build" --prefix "$prefix" > /dev/null
pc_dir=$(dirname "$(find "$prefix" -name barcode_orv.pc | head -1)")

# The README's C example, exactly as printed there.
awk '/<!-- c-example -->/{getline; grab=1; next} grab && /^```/{exit} grab' "$source_dir/README.md" > "$work/example.c"
# shellcheck disable=SC2046
cc -std=c99 -Wall -Wextra -Werror "$work/example.c" -o "$work/example" \
  $(PKG_CONFIG_PATH="$pc_dir" pkg-config --cflags --libs barcode_orv)
(cd "$work" && ./example)
test -s "$work/hello.png" && test -s "$work/hello.svg"
echo "C example: built with pkg-config, wrote hello.png and hello.svg"

cmake -S "$source_dir/tests/consumer" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$prefix" > /dev/null
cmake --build "$work/consumer" > /dev/null
"$work/consumer/consumer"

"$prefix/bin/barcode-orv" --list > /dev/null
echo "installed barcode-orv runs without LD_LIBRARY_PATH"
