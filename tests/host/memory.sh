#!/bin/bash
# memory.sh UNWML: a paragraph of 63 MB in an address space that has no room for it is a
# document that fails, whatever the format and wherever the room ends.
set -uo pipefail
unwml=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
deck=$folder/big.wml
{
  printf '<wml><card><p>'
  yes 'some words ' | tr -d '\n' | head -c 63000000
  printf '</p></card></wml>'
} >"$deck"
failed=0
for form in text html json markdown trace; do
  for kilobytes in 100000 170000 200000; do
    message=$(ulimit -v $kilobytes && "$unwml" -t $form "$deck" 2>&1 >"$folder/out")
    status=$?
    [ $status = 0 ] && [ -s "$folder/out" ] && continue
    [ $status = 1 ] && [ "$message" = "unwml: $deck: out of memory" ] && [ ! -s "$folder/out" ] &&
      continue
    echo "$form in $kilobytes KB: status $status, $(stat -c %s "$folder/out") bytes: $message"
    failed=1
  done
done
exit $failed
