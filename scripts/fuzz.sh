#!/bin/sh
# Runs every fuzz target for some seconds, from the inputs in fuzz/corpus. A find stays in build/fuzz/finds; copy it to
# fuzz/corpus/TARGET, where the tests replay it.
# usage: fuzz.sh SECONDS [TARGET]...
set -eu
cd "$(dirname "$0")/.."
[ $# -ge 1 ] || { echo "usage: fuzz.sh SECONDS [TARGET]..." >&2; exit 2; }
seconds=$1
shift
[ $# -gt 0 ] || set -- css_selectors edits entities markup pages selectors
mkdir -p build/fuzz/finds
for target in "$@"; do
  mkdir -p "build/fuzz/corpus/$target"
  dictionary=""
  [ ! -f "fuzz/$target.dict" ] || dictionary="-dict=fuzz/$target.dict"
  echo "--- $target"
  # shellcheck disable=SC2086  # nothing or one word
  build/fuzz/fuzz/fuzz_"$target" $dictionary -max_total_time="$seconds" -max_len=4096 -timeout=10 \
    -print_final_stats=1 -verbosity=0 -artifact_prefix="build/fuzz/finds/$target-" \
    "build/fuzz/corpus/$target" "fuzz/corpus/$target"
done
