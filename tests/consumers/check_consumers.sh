#!/bin/sh
# Builds projects that use qo_html in other ways than the tests do: as a part of their build, and as an installed static
# library, with all paths full of blanks, folders given as absolute ones, and the standards that no preset builds with.
# usage: check_consumers.sh SOURCE WORK
set -eu
source=$1
mkdir -p "$2"
work="$(cd "$2" && pwd)/a place with blanks"
jobs=${JOBS:-1}
version() { sed -n 's/^#define QO_[A-Z]*_VERSION "\(.*\)"/\1/p' "$source/src/$1"; }
own_host="<p>text</p> 2 1 0 $(version qo_html/qo_html_version.h)"
own_page="<p {{ x }}>a<p class=\"k\">b 1 $(version qo_page/version.h)"

fail() { echo "check_consumers.sh: $*" >&2; exit 1; }

expect() {  # WHAT EXPECTED FOUND
  [ "$2" = "$3" ] || fail "$1: expected '$2', found '$3'"
}

rm -rf "$work"
mkdir -p "$work/source"
(cd "$source" && cp -R CMakeLists.txt cmake src tests examples "$work/source")

# A part of a parent's build, with clang, C++20, and a linker that takes no version script.
cmake -S "$work/source/tests/consumers/parent" -B "$work/parent" -DQO_HTML_SOURCE="$work/source" \
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_CXX_STANDARD=20 -DQO_HTML_HAS_VERSION_SCRIPTS=OFF \
  -DQO_HTML_WARNINGS_AS_ERRORS=ON > "$work/log"
cmake --build "$work/parent" -j "$jobs" --target own_host own_page link_host >> "$work/log"
expect "own_host in a parent" "$own_host" "$("$work/parent/own_host")"
expect "own_page in a parent" "$own_page" "$("$work/parent/own_page")"
"$work/parent/link_host" | grep -q 'id="item0"' || fail "link_host in a parent"
cmake --build "$work/parent" --target help | grep -q Nightly && fail "CTest's targets in a parent"
cmake --install "$work/parent" --prefix "$work/parent/prefix" >> "$work/log"
expect "installed by a parent" ./bin/link_host "$(cd "$work/parent/prefix" && find . -type f)"

# Static, with gcc, C++23 and absolute folders, installed.
cmake -S "$work/source" -B "$work/static" -DBUILD_SHARED_LIBS=OFF -DCMAKE_CXX_STANDARD=23 \
  -DCMAKE_INSTALL_PREFIX="$work/prefix" -DCMAKE_INSTALL_LIBDIR="$work/libraries/lib" \
  -DCMAKE_BUILD_TYPE=Debug -DQO_HTML_WARNINGS_AS_ERRORS=ON -DQO_HTML_BUILD_TESTS=OFF \
  -DQO_HTML_BUILD_EXAMPLES=OFF -DQO_HTML_BUILD_CLI=OFF >> "$work/log"
cmake --build "$work/static" -j "$jobs" >> "$work/log"
cmake --install "$work/static" >> "$work/log"
cmake -S "$work/source/examples" -B "$work/examples" -DCMAKE_PREFIX_PATH="$work/libraries" >> "$work/log"
cmake --build "$work/examples" -j "$jobs" >> "$work/log"
(cd "$work/examples" && ctest --output-on-failure >> "$work/log") || { cat "$work/log"; fail "the examples"; }
for package in "qo_html own_host.cpp $own_host" "qo_page own_page.cpp $own_page"; do
  name=${package%% *}; rest=${package#* }
  "$source/tests/check_pkg_config.sh" c++ "$source/tests/consumers/${rest%% *}" \
    "$work/libraries/lib/pkgconfig" "$work" "$name" "${rest#* }"
done
