#!/bin/sh
# Builds a program with the flags that an installed .pc file gives, and runs it.
# usage: check_pkg_config.sh COMPILER SOURCE PKGCONFIG_DIR WORK_DIR PACKAGE EXPECTED
set -eu
compiler=$1 source=$2 work=$4 package=$5 expected=$6
export PKG_CONFIG_PATH="$3"
# Blanks in paths come quoted.
eval "libdir=$(pkg-config --variable=libdir "$package")"
eval "set -- $(pkg-config --cflags --libs "$package")"
"$compiler" -std=c++17 -fvisibility=hidden "$source" -o "$work/own_$package" "$@"
found=$(LD_LIBRARY_PATH="$libdir" "$work/own_$package")
[ "$found" = "$expected" ] || { echo "own_$package printed: $found" >&2; exit 1; }
