#!/bin/bash
# check_library.sh LIBRARY EXPORTS: the library exports exactly the listed names, has an ABI
# number as its soname and needs nothing but libc. readelf reads libraries of any machine.
set -euo pipefail
library=$1 exports=$2

readelf --dyn-syms -W "$library" |
  awk '$5 != "LOCAL" && $7 != "UND" && $8 != "" && NR > 3 { sub(/@.*/, "", $8); print $8 }' |
  grep -v '^Name$' | LC_ALL=C sort >exported.txt
if ! diff -u "$exports" exported.txt; then
  echo "the exported names (+) differ from the list (-)"
  exit 1
fi

dynamic=$(readelf -d -W "$library")
soname=$(sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p' <<<"$dynamic")
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic")
if [ "$soname" != libvs_wml.so.1 ]; then
  echo "the soname is '$soname'"
  exit 1
fi
if [ "$needed" != libc.so.6 ]; then
  printf 'the library needs more than libc:\n%s\n' "$needed"
  exit 1
fi
if grep -q TEXTREL <<<"$dynamic"; then
  echo "the library has text relocations"
  exit 1
fi
