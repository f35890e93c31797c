#!/bin/sh
# Builds a host with the flags that the installed qo_html.pc gives, and runs it.
# usage: check_pkg_config.sh COMPILER SOURCE PKGCONFIG_DIR WORK_DIR
set -eu
export PKG_CONFIG_PATH="$3"
libdir=$(pkg-config --variable=libdir qo_html)
# shellcheck disable=SC2046  # the flags are words
"$1" -std=c++17 -fvisibility=hidden "$2" -o "$4/own_host" $(pkg-config --cflags --libs qo_html)
found=$(LD_LIBRARY_PATH="$libdir" "$4/own_host")
[ "$found" = "<p>text</p> 2 1 0" ] || { echo "own_host printed: $found" >&2; exit 1; }
