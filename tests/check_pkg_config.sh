#!/bin/sh
# Builds a program with the flags that an installed .pc file gives, and runs it.
# usage: check_pkg_config.sh COMPILER SOURCE PKGCONFIG_DIR WORK_DIR PACKAGE EXPECTED
set -eu
export PKG_CONFIG_PATH="$3"
libdir=$(pkg-config --variable=libdir "$5")
# shellcheck disable=SC2046  # the flags are words
"$1" -std=c++17 -fvisibility=hidden "$2" -o "$4/own_$5" $(pkg-config --cflags --libs "$5")
found=$(LD_LIBRARY_PATH="$libdir" "$4/own_$5")
[ "$found" = "$6" ] || { echo "own_$5 printed: $found" >&2; exit 1; }
