#!/bin/bash
# pkg_config_test.sh SOURCE: vs_wml.pc names the installed folders, whether the library folder
# was given relative to the prefix or absolute.
set -euo pipefail
source=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# check NAME EXPECTED_LIBDIR CMAKE_OPTION...: configures, and asks pkg-config where it is told
# that the file will lie.
check() {
  local name=$1 expected=$2 got
  shift 2
  cmake -S "$source" -B "$work/$name" -G Ninja -DVS_WML_BUILD_TOOL=OFF -DVS_WML_BUILD_TESTS=OFF \
    -DVS_WML_BUILD_EXAMPLES=OFF -DCMAKE_INSTALL_PREFIX="$work/usr" "$@" >/dev/null
  mkdir -p "$expected/pkgconfig"
  cp "$work/$name/vs_wml.pc" "$expected/pkgconfig/"
  got=$(PKG_CONFIG_PATH=$expected/pkgconfig pkg-config --variable=libdir vs_wml)
  if [ "$(realpath "$got")" != "$expected" ]; then
    echo "$name: libdir is '$got', not '$expected'"
    exit 1
  fi
  got=$(PKG_CONFIG_PATH=$expected/pkgconfig pkg-config --variable=includedir vs_wml)
  if [ "$(realpath -m "$got")" != "$work/usr/include" ]; then
    echo "$name: includedir is '$got'"
    exit 1
  fi
}

check relative "$work/usr/lib" -DCMAKE_INSTALL_LIBDIR=lib
check multiarch "$work/usr/lib/x86_64-linux-gnu" -DCMAKE_INSTALL_LIBDIR=lib/x86_64-linux-gnu
check absolute "$work/elsewhere" -DCMAKE_INSTALL_LIBDIR="$work/elsewhere"
