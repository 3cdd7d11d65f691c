#!/usr/bin/env bats
# Where outputs go, and what is left of them when a run does not come to its end.

bats_require_minimum_version 1.5.0
load helpers

half_written() { compgen -G "$1/.unwml-*" >/dev/null; }
none_half_written() { ! half_written "$1"; }

# start_half COMMAND...: starts a run by COMMAND and stops it while its output is half-written under
# out; its process is $half.
start_half() {
  [ -f long.wml ] || long_deck long.wml 200000
  for _ in $(seq 10); do
    rm -rf out
    "$@" "$UNWML" -t trace -o out/ a.wml long.wml 3>&- &
    half=$!
    await test -f out/a.trace
    await compgen -G "out/.unwml-*" >/dev/null || return 1
    kill -STOP $half
    ! half_written out || return 0
    kill -CONT $half
    wait $half
  done
  echo "never caught half-written"
  return 1
}

@test "one input is written to the file that -o names" {
  run unwml -o out.html a.wml
  [ "$status" = 0 ]
  grep -q '<!DOCTYPE html>' out.html
  unwml -o page.txt -t json a.wml
  grep -q '"source"' page.txt
  unwml -o sub/plain - <a.wml
  grep -q Apple sub/plain
  [[ $(unwml -o - a.wml) == *Apple* ]]
  [[ $(unwml -o /dev/stdout a.wml) == *Apple* ]]
  unwml -o /dev/null a.wml
  [ -c /dev/null ]
  ln -s real.txt link.txt
  : >real.txt
  unwml -o link.txt a.wml
  grep -q Apple real.txt
  run unwml -o a.wml a.wml
  [ "$status" = 1 ]
  [[ $output == *"would replace an input" ]]
  run unwml -o page.txt a.wml a.wml
  [ "$status" = 2 ]
}

@test "links inside the folder of outputs are not written through" {
  mkdir real elsewhere
  ln -s real out
  ln -s ../elsewhere out/sub
  deck in/sub/b.wml b
  deck in/c.wml c
  run unwml -o out in
  [ "$status" = 1 ]
  [ "$output" = "unwml: in/sub/b.wml: sub is a symbolic link, which is not written through" ]
  [ -z "$(ls elsewhere)" ]
  echo kept >elsewhere/file
  ln -s ../elsewhere/file real/d.txt
  deck in/d.wml d
  rm out/sub
  unwml -o out in
  [ "$(cat elsewhere/file)" = kept ]
  [ -f out/sub/b.txt ] && [ -f out/d.txt ] && [ ! -L out/d.txt ]
}

@test "--skip-existing goes on where a run was interrupted" {
  deck in/a.wml old
  deck in/b.wml b
  unwml -o out in
  deck in/a.wml new
  rm out/b.txt
  run unwml --skip-existing --summary -o out in
  [ "$status" = 0 ]
  [[ $output == "unwml: 1 read, 0 with warnings, 0 failed, 1 skipped, "*" s" ]]
  grep -q old out/a.txt
  grep -q b out/b.txt
}

@test "each signal that ends a run removes what is half-written" {
  for signal in INT TERM HUP QUIT; do
    start_half env --default-signal
    kill -$signal $half
    kill -CONT $half
    status=0
    wait $half || status=$?
    [ "$status" = $((128 + $(kill -l $signal))) ]
    none_half_written out
    [ -f out/a.trace ]
  done
}

@test "a signal that is ignored ends nothing" {
  start_half env --ignore-signal=HUP
  kill -HUP $half
  kill -CONT $half
  wait $half
  [ -f out/long.trace ]
}

@test "what a killed run has left is removed by the next one, what another one writes is not" {
  start_half env
  kill -KILL $half
  wait $half || true
  half_written out
  left=$(compgen -G "out/.unwml-*")
  touch out/.unwml-notes.txt out/.unwml-x 'out/.unwml-my file'
  ln -s ../a.wml out/.unwml-aaaaaaaa
  mkdir out/.unwml-bbbbbbbb
  run unwml -o out/ a.wml
  [ "$status" = 0 ]
  [ -z "$output" ]
  [ ! -e "$left" ]
  [ "$(find out -name '.unwml-*' | wc -l)" = 5 ]

  start_half env
  left=$(compgen -G "out/.unwml-*")
  unwml -o out/ a.wml
  [ -f "$left" ]
  kill -CONT $half
  wait $half
  [ -f out/long.trace ]
  none_half_written out
}

@test "a disk that is full fails the documents that do not fit" {
  long_deck long.wml 20000
  for jobs in 1 3; do
    rm -rf out
    run bash -c 'ulimit -f 64; "$0" -j '$jobs' -o out/ a.wml long.wml long.wml a.wml' "$UNWML"
    [ "$status" = 1 ]
    [ "${lines[0]}" = "unwml: long.wml: out/long.txt: File too large" ]
    [ "$(cd out && LC_ALL=C ls -A | tr '\n' ' ')" = "a.txt a.wml.txt " ]
    run bash -c 'ulimit -f 64; "$0" -j '$jobs' a.wml long.wml >out.txt' "$UNWML"
    [ "$status" = 1 ]
    [ "$output" = "unwml: standard output: File too large" ]
  done
}

@test "--sync writes the same" {
  unwml --sync -o out/ a.wml
  cmp out/a.txt <(unwml a.wml)
}

@test "a large document goes out as it comes; when it fails its line is ended and that is told" {
  { # read at first, then given up: tables without an end, each looked for through all that follows
    echo "<wml><card><p>$(printf 'before %.0s' $(seq 400000))</p>"
    printf '<table columns=1></>%.0s' $(seq 20000)
  } >bomb.wml
  for jobs in 1 2; do
    run --separate-stderr unwml --raw -t json -j $jobs a.wml bomb.wml a.wml
    [ "$status" = 1 ]
    [ "${#lines[@]}" = 3 ]
    [[ ${lines[0]} == '{"format":2,"source":"a.wml"'*'}' ]]
    [[ ${lines[1]} == '{"format":2,"source":"bomb.wml"'* ]]
    [ "${lines[2]}" = "${lines[0]}" ]
    [[ $stderr == "unwml: bomb.wml: given up: "*"; what was written of it up to there is incomplete" ]]
  done
  long_deck long.wml 100000
  expected=$(unwml -t json -j 1 long.wml a.wml long.wml | cksum)
  [ "$(unwml -t json -j 3 long.wml a.wml long.wml | cksum)" = "$expected" ]
}
