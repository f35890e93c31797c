#!/bin/sh
# Formats the C++ sources, or tells with --check which are not formatted.
set -eu
cd "$(dirname "$0")/.."
case "${1:-}" in
  "") options=-i ;;
  --check) options="--dry-run --Werror" ;;
  *) echo "usage: format.sh [--check]" >&2; exit 2 ;;
esac
# shellcheck disable=SC2086  # a list of words
find src tests examples bench fuzz -name '*.cpp' -o -name '*.h' | sort | xargs clang-format $options
