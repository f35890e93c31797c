#!/bin/sh
# Compares the symbols that the library defines, and those that it leaves to its host, with a checked-in list.
# What carries a version belongs to the C or C++ runtime.
# usage: check_symbols.sh NM LIBRARY LIST
set -eu
"$1" -DC "$2" |
  sed -n -e '/@/d' -e 's/^ *U /needed  /p' -e 's/^[0-9a-f]* [A-Z] /defined /p' |
  sed -e 's/std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >/std::string/g' \
    -e 's/\[abi:cxx11\]//' |
  LC_ALL=C sort -u | diff -u "$3" -
