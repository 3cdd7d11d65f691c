#!/bin/bash
# SPDX-License-Identifier: MIT
# check_hardening.sh FILE...: each program and library is built as cmake/Hardening.cmake says:
# position-independent, its tables read-only and bound at the start, no stack that runs,
# canaries in a program, and branch targets marked on x86.
set -euo pipefail

failed=no
fail() {
  echo "$file: $1"
  failed=yes
}

for file in "$@"; do
  headers=$(readelf -hlW "$file")
  dynamic=$(readelf -dW "$file")
  symbols=$(readelf --dyn-syms -W "$file")
  grep -q 'Type: *DYN' <<<"$headers" || fail "not position-independent"
  grep -q GNU_RELRO <<<"$headers" || fail "no read-only relocations"
  grep -qE "BIND_NOW|Flags:.*NOW" <<<"$dynamic" || fail "symbols are bound lazily"
  if grep GNU_STACK <<<"$headers" | grep -q 'RWE'; then fail "its stack may run"; fi
  if grep -q TEXTREL <<<"$dynamic"; then fail "text relocations"; fi
  if ! grep -q 'INTERP' <<<"$headers"; then continue; fi
  # A program: it has arrays on the stack.
  grep -q __stack_chk_fail <<<"$symbols" || fail "no stack protector"
  if grep -q 'X86-64' <<<"$headers" && ! objdump -d "$file" --no-show-raw-insn | grep endbr64 >/dev/null; then
    fail "no branch targets"
  fi
done
[ $failed = no ]
