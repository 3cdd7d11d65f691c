#!/bin/bash
# formats.sh UNWML [--update]: each case/NAME.wml against NAME.txt, .html, .json and .md
# beside it. With --update the expected files are written anew.
set -uo pipefail
unwml=$(realpath "$1")
update=${2:-}
cd "$(dirname "$0")/cases" || exit 1
export LC_ALL=C.UTF-8
passed=0
failed=0
for deck in *.wml; do
  for pair in text:txt html:html json:json markdown:md; do
    expected=${deck%.wml}.${pair#*:}
    if [ "$update" = --update ]; then
      "$unwml" -t "${pair%:*}" --width 60 "$deck" >"$expected" || exit 1
    fi
    if "$unwml" -t "${pair%:*}" --width 60 "$deck" | diff -u "$expected" -; then
      passed=$((passed + 1))
    else
      failed=$((failed + 1))
    fi
  done
done
echo "$passed passed, $failed failed"
[ "$failed" = 0 ] && [ "$passed" -gt 0 ]
