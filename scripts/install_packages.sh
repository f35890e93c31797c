#!/bin/sh
# Installs the Debian packages that are missing, as root or with sudo.
# usage: install_packages.sh [build|check|bench|compare|docs|package]...   (default: build)
set -eu

build="ca-certificates cmake g++ libgtest-dev libjsoncpp-dev libmimalloc-dev libpcre2-dev make binutils patch pkgconf python3-minimal scdoc libpython3-stdlib pybind11-dev python3-dev python3-hypothesis python3-pytest"
check="chromium clang clang-format git libclang-rt-dev mypy"
compare="chromium python3"
command -v npm > /dev/null || compare="$compare nodejs npm"  # Node.js may have come from elsewhere
docs="doxygen"
package="dpkg-dev file"
bench="libbenchmark-dev libgumbo-dev libxml2-dev python3 git html-xml-utils libxml2-utils pup python3-lxml"

wanted=""
for group in "${@:-build}"; do
  case "$group" in
    build) wanted="$wanted $build" ;;
    check) wanted="$wanted $check" ;;
    bench) wanted="$wanted $bench" ;;
    compare) wanted="$wanted $compare" ;;
    docs) wanted="$wanted $docs" ;;
    package) wanted="$wanted $package" ;;
    *) echo "install_packages.sh: no group called '$group'" >&2; exit 2 ;;
  esac
done

missing=""
for package in $wanted; do
  status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
  [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=""
[ "$(id -u)" = 0 ] || as_root=sudo
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -q
# shellcheck disable=SC2086  # a list of words
$as_root apt-get install -q -y --no-install-recommends $missing
