#!/usr/bin/env bats
# unwml as a user meets it: what it writes where, its exit codes and its messages.

bats_require_minimum_version 1.5.0

load helpers

@test "help keeps to 80 columns, has examples and all formats" {
  run unwml --help
  [ "$status" = 0 ]
  for line in "${lines[@]}"; do [ "${#line}" -le 80 ]; done
  [[ $output == *Examples:* ]]
  for format in text html json markdown trace; do [[ $output == *$'\n'"  $format "* ]]; done
}

@test "the manual page is well made and has every exit code" {
  unwml --print manual >unwml.1
  if command -v man >/dev/null; then
    [ -z "$(man --warnings -l unwml.1 2>&1 >/dev/null)" ]
  fi
  for code in 0 1 2 130; do grep -qE "^\\\\fB(.*, )?$code(, .*)?\\\\fR" unwml.1; done
}

@test "wrong usage is told and ends with 2" {
  for arguments in '--to pdf' '--width 0' '--no-such' '--charset nope' '--identity 1152' \
    '--identity 1151 --charset utf-8' '-j 0' '--to' '- -' '-o a.wml b.wml' \
    '--with-filename --to json' '--assets a.wml' '--assets nowhere'; do
    # shellcheck disable=SC2086
    run unwml $arguments a.wml
    [ "$status" = 2 ]
    [[ ${lines[0]} == "unwml: "* ]]
    [ "${#lines[@]}" = 2 ]
  done
  run unwml --to html a.wml a.wml
  [ "$status" = 2 ]
  for option in --files-from --output; do
    run unwml $option '' a.wml
    [ "$status" = 2 ]
    [[ ${lines[0]} == "unwml: $option: no "*" given" ]]
  done
}

@test "standard input is read when nothing is named, and as -" {
  [ "$(unwml <a.wml)" = "$(unwml a.wml)" ]
  [ "$(unwml - <a.wml)" = "$(unwml a.wml)" ]
}

@test "what cannot be read is named with the reason, the others are read, the code is 1" {
  printf '\x7fELF\0\0' >binary.wml
  echo '<html><p>x' >page.wml
  : >empty.wml
  run --separate-stderr unwml a.wml binary.wml page.wml empty.wml missing.wml
  [ "$status" = 1 ]
  [[ $output == *"Apple pie"* ]]
  # shellcheck disable=SC2154
  [ "${stderr_lines[0]}" = "unwml: binary.wml: binary data, not WML" ]
  [ "${stderr_lines[1]}" = "unwml: page.wml: HTML, not WML: open it in a browser" ]
  [ "${stderr_lines[2]}" = "unwml: empty.wml: empty document" ]
  [ "${stderr_lines[3]}" = "unwml: missing.wml: No such file or directory" ]
}

@test "names cannot drive the terminal" {
  run unwml $'\e[31mred.wml'
  [ "$status" = 1 ]
  [ "$output" = "unwml: \\x1B[31mred.wml: No such file or directory" ]
  deck $'b\e.wml' b
  run unwml $'b\e.wml' a.wml
  [[ $output != *$'\e'* ]]
}

@test "-o mirrors the tree and leaves nothing half-written" {
  deck in/b/c.wml pear
  deck in/b/d.WML plum
  deck in/e.txt fig
  echo nothing >in/f.wml
  run unwml -t markdown -o alone/ in
  [ "$status" = 1 ]
  [ "$(cd alone && find . -type f | sort | tr '\n' ' ')" = "./b/c.md ./b/d.md " ]
  run unwml -t markdown -o out in a.wml ./in/e.txt
  [ "$status" = 1 ]
  [ "$(cd out && find . -type f | sort | tr '\n' ' ')" = "./a.md ./in/b/c.md ./in/b/d.md ./in/e.md " ]
  [[ $(cat out/in/b/c.md) = *$'\n\n## T\n\npear' ]]
  [ "$(stat -c %a out/a.md)" = "$(stat -c %a a.wml)" ]
}

@test "each input has an output of its own, as on a disk that folds case" {
  deck x/a.wml one
  deck y/a.wml two
  run unwml -o out x y
  [ "$status" = 0 ]
  grep -q one out/x/a.txt
  grep -q two out/y/a.txt
  deck z/A.wml 1
  deck z/a.wml 2
  deck z/a.wmlc 3
  deck z/a.WML 4
  deck 'z/b.wml?x=1' 5
  deck 'z/b.wml?x=2' 6
  deck $'z/\u00e9.wml' 7
  deck $'z/E\u0301.wml' 8
  run unwml -o sorted z
  [ "$status" = 0 ]
  [ "$(cd sorted && LC_ALL=C ls | tr '\n' ' ')" = \
    $'A.txt E\u0301.txt a-2.txt a.WML.txt a.wmlc.txt b.wml?x=1.txt b.wml?x=2.txt \u00e9.wml.txt ' ]
}

@test "an output never takes the place of an input" {
  deck b.txt precious
  cp b.txt before
  run unwml -o . b.txt
  [ "$status" = 1 ]
  [ "$output" = "unwml: b.txt: its output ./b.txt would replace an input" ]
  deck b.wml other
  run unwml -j 2 -o . a.wml b.wml b.txt
  [ "$status" = 1 ]
  cmp b.txt before
  [ -f a.txt ]
}

@test "a document that fails leaves nothing behind, neither files nor lines" {
  { # tables without an end, each looked for through all that follows
    echo "<wml><card><p>$(printf 'before %.0s' $(seq 20000))</p>"
    printf '<table columns=1></>%.0s' $(seq 20000)
  } >bomb.wml
  for jobs in 1 2; do
    run --separate-stderr unwml --raw -t json -j $jobs bomb.wml a.wml
    [ "$status" = 1 ]
    [[ $output == '{"format":2,"source":"a.wml"'* ]]
    [ "${#stderr_lines[@]}" = 1 ]
    [[ $stderr == "unwml: bomb.wml: given up: "* ]]
  done
  run unwml --raw -o out bomb.wml missing.wml
  [ "$status" = 1 ]
  [ -z "$(find out -type f 2>/dev/null)" ]
}

@test "what lies in a directory and is no file is told, not waited for" {
  deck in/b.wml pear
  mkfifo in/a.wml
  mkdir in/c.wml
  ln -s c.wml in/d.wml
  run --separate-stderr timeout 20 "$UNWML" in
  [ "$status" = 1 ]
  [[ $output == *pear* ]]
  [ "${stderr_lines[0]}" = "unwml: in/a.wml: not a regular file" ]
  [ "${stderr_lines[1]}" = "unwml: 1 symbolic link was not followed (--follow)" ]
}

@test "where few threads can be started, few do the work" {
  [ -z "$VS_WML_SANITIZE" ] || skip "sanitizers reserve more addresses than the limit leaves"
  run --separate-stderr bash -c 'ulimit -v 400000; "$0" -j 256 $(yes a.wml | head -n 300)' "$UNWML"
  [ "$status" = 0 ]
  [ "$(grep -c Apple <<<"$output")" = 300 ]
}

@test "--files-from takes lines and NULs, from a file and from standard input" {
  deck 'with blank.wml' second
  printf 'a.wml\nwith blank.wml\n' >lines
  run unwml --files-from lines
  [ "$status" = 0 ]
  [[ $output == *Apple*second* ]]
  [ "$(printf 'a.wml\0with blank.wml\0' | unwml --files-from -)" = "$output" ]
  run unwml --files-from nowhere
  [ "$status" = 1 ]
  [ "$output" = "unwml: nowhere: No such file or directory" ]
}

@test "any number of threads gives the same output in the same order" {
  for i in $(seq 200); do deck "many/$((i % 7))/$i.wml" "number $i"; done
  echo broken >many/3/broken.wml
  run unwml -t json many
  [ "$status" = 1 ]
  expected=$output
  for jobs in 2 5; do
    run unwml -t json -j $jobs many
    [ "$status" = 1 ]
    [ "$output" = "$expected" ]
  done
}

@test "a full disk and a closed pipe end cleanly" {
  for i in $(seq 500); do deck "many/$i.wml" "number $i"; done
  if [ -e /dev/full ]; then
    for jobs in 1 3; do
      run bash -c '"$0" -j '$jobs' many >/dev/full' "$UNWML"
      [ "$status" = 1 ]
      [ "$output" = "unwml: standard output: No space left on device" ]
    done
    run bash -c '"$0" --print manual >/dev/full' "$UNWML"
    [ "$status" = 1 ]
  fi
  for jobs in 1 3; do
    run bash -c '"$0" -j '$jobs' many | head -n 1; exit "${PIPESTATUS[0]}"' "$UNWML"
    [ "$status" = 0 ]
    [ "${#lines[@]}" = 1 ]
  done
}

@test "text is styled only when asked for or on a terminal" {
  [[ $(unwml a.wml) != *$'\e'* ]]
  [[ $(unwml --color always a.wml) == *$'\e[0;1mpie\e[0m'* ]]
  if command -v script >/dev/null; then
    TERM=xterm script -qec "'$UNWML' a.wml" /dev/null </dev/null | grep -q $'\e'
    ! NO_COLOR=1 TERM=xterm script -qec "'$UNWML' a.wml" /dev/null </dev/null | grep -q $'\e'
  fi
}

@test "a trace has a line for each call" {
  run unwml -t trace --identity 1151 a.wml
  [ "$status" = 0 ]
  [[ $output == *'SOEmitChar "pie"'* ]]
  [ "${lines[-1]}" = "SOEmitBreak document" ]
}

@test "variables, a base and pictures are what the options say" {
  mkdir assets
  printf '\0\0\x08\x02\x00\xff' >assets/bar.wbmp
  printf '<wml><card><p><a href="x?v=$(v)">$v</a><img src="/p/bar.wbmp" alt="bar"/></p></card></wml>' >v.wml
  run unwml --var 'v=a b' --base http://h/d/ --assets assets --images blocks v.wml
  [ "$status" = 0 ]
  [ "${lines[0]}" = 'a b[1]' ]
  [ "${lines[1]}" = '▀▀▀▀' ]
  [ "${lines[2]}" = '[1] http://h/d/x?v=a%20b' ]
  unwml -t html --assets assets v.wml | grep -q 'src="data:image/png;base64,'
  run unwml --raw --images alt v.wml
  [ "${lines[0]}" = 'v[1][bar]' ]
  for wrong in '--var 1=x' '--var x' '--base here' '--images big' $'--var v=\e[31m'; do
    run unwml $wrong v.wml
    [ "$status" = 2 ]
    [[ $output != *$'\e'* ]]
  done
}

@test "compiled decks are read, damaged ones are named" {
  printf '\x03\x04\x6a\0\x7f\xe7\x36\x03t\0\x01\x03abc\0\x01\x01' >c.wmlc
  run unwml c.wmlc
  [ "$status" = 0 ]
  [ "${lines[1]}" = abc ]
  head -c 12 c.wmlc >d.wmlc
  run unwml d.wmlc
  [ "$status" = 1 ]
  [ "$output" = 'unwml: d.wmlc: compiled deck is damaged at byte 12: a string has no end' ]
}

@test "JSON is as its manual shows it" {
  for name in ferry.wml ferry.json; do
    "$VS_WML_SOURCE/tests/docs/run_blocks.py" "$VS_WML_SOURCE/docs/json.md" --extract $name >$name
  done
  unwml -t json ferry.wml | python3 -c '
import json, sys
shown, written = json.load(open("ferry.json")), json.load(sys.stdin)
written["xxh128"] = "..."
assert written == shown, written'
}

@test "JSON keeps to its schema" {
  command -v python3 >/dev/null && python3 -c 'import jsonschema' || skip "no jsonschema"
  printf '<?xml encoding="nope"?><wml><card><p>\xe9<img src="a" width="3" height="5"/>' >odd.wml
  unwml -t json odd.wml "$VS_WML_SOURCE"/{examples/decks,tests/host/{cases,conservation}}/*.wml |
    python3 "$VS_WML_SOURCE/tests/unwml/json_schema.py" "$VS_WML_SOURCE/docs/unwml.schema.json"
}

# The bar appears a tenth of a second after the start, at the earliest; the first document comes
# later than that, however slow the machine.
@test "progress is shown on a terminal while the output goes elsewhere" {
  command -v script >/dev/null || skip "no script"
  mkfifo late.wml
  show() { # show COMMAND: what the terminal gets
    timeout 20 bash -c '{ sleep 0.2 && cat a.wml; } >late.wml' 3>&- &
    TERM=xterm script -qefc "$1" /dev/null </dev/null || true
    wait
  }
  screen=$(show "'$UNWML' late.wml missing.wml a.wml >out.txt")
  bar=$'\r\\[##########                    \\] 1/3  [0-9]+ decks/s  0\\.0 MB/s  0:[0-9][0-9] left\e\\[K'
  [[ $screen =~ ^$bar ]]
  [[ $screen == *$'left\e[K\r\e[Kunwml: missing.wml: No such file or directory'* ]]
  [ "$(grep -c Apple out.txt)" = 2 ]
  # No bar for one document, nor where it would stand in the output or in a file.
  [ -z "$(show "'$UNWML' late.wml >out.txt")" ]
  [[ $(show "'$UNWML' late.wml a.wml") != *decks/s* ]]
  [ -z "$(show "'$UNWML' late.wml a.wml >out.txt 2>errors.txt")" ]
  [ ! -s errors.txt ]
}

@test "inputs are found where they are named, in order and once each" {
  deck in/b.wml B
  deck in/a/z.wml AZ
  deck in/c.WMLC C
  deck in/.hidden.wml H
  deck in/no.wmls N
  deck in/no.xml N
  ln -s .. in/a/circle
  ln -s a in/link
  ln -s ../a.wml in/file.wml
  sources() { grep -o '"source":"[^"]*"' <<<"$output" | cut -d'"' -f4 | tr '\n' ' '; }
  run --separate-stderr unwml -t json in
  [ "$status" = 0 ]
  [ "$(sources)" = 'in/.hidden.wml in/a/z.wml in/b.wml in/c.WMLC ' ]
  [ "$stderr" = "unwml: 3 symbolic links were not followed (--follow)" ]
  run unwml -t json --quiet in
  [ "$(sources)" = 'in/.hidden.wml in/a/z.wml in/b.wml in/c.WMLC ' ]
  run --separate-stderr unwml -t json --follow in
  [ "$status" = 0 ]
  [ "$(sources)" = 'in/.hidden.wml in/a/z.wml in/b.wml in/c.WMLC in/file.wml ' ]
  [ -z "$stderr" ]
  run unwml -t json --name 'no.w*' --name '*.XML' in
  [ "$(sources)" = 'in/.hidden.wml in/a/z.wml in/b.wml in/c.WMLC in/no.wmls in/no.xml ' ]
  mkdir empty
  run unwml empty
  [ "$status" = 1 ]
  [ "$output" = "unwml: empty: no decks in this folder (*.wml, *.wmlc; --name tells of others)" ]
  run unwml -o out ../"$(basename "$PWD")"/in/b.wml "$PWD/in/a/z.wml" ./in/../a.wml
  [ "$status" = 0 ]
  [ "$(cd out && echo *)" = "a.txt b.txt z.txt" ]
  run unwml -t json -o out/ - <a.wml
  [ -s out/stdin.json ]
}

@test "lists may end their lines as they like" {
  printf 'a.wml\r\n\r\n\na.wml' >list
  run unwml -t json --files-from list
  [ "$status" = 0 ]
  [ "${#lines[@]}" = 2 ]
  printf 'a.wml\r\0' >list
  run unwml --files-from list
  [ "$status" = 1 ]
  : >list
  run unwml --files-from list
  [ "$status" = 0 ]
  [ -z "$output" ]
  run unwml --files-from .
  [ "$status" = 1 ]
  [ "$output" = "unwml: .: is a directory" ]
}

@test "outputs have the mode of the user's files and go where they can" {
  umask 027
  run unwml -o out/deep/er/ a.wml
  [ "$status" = 0 ]
  [ "$(stat -c %a out/deep/er/a.txt)" = 640 ]
  echo kept >blocked
  run unwml -o blocked/deep/ a.wml
  [ "$status" = 1 ]
  [[ $output == "unwml: a.wml: "*": "* ]]
  [ "$(cat blocked)" = kept ]
  mkdir -p taken/a.txt
  run unwml -o taken a.wml
  [ "$status" = 1 ]
  [[ $output == "unwml: a.wml: "* ]]
  [ "$(ls -A taken)" = a.txt ]
  for format in text html json markdown trace; do unwml -t $format -o formats/ a.wml; done
  [ "$(cd formats && echo *)" = "a.html a.json a.md a.trace a.txt" ]
}

@test "a trace that cannot be written ends as other outputs do" {
  [ -e /dev/full ] || skip "no /dev/full"
  for i in $(seq 2000); do echo "<p>paragraph $i</p>"; done >text
  echo "<wml><card>$(cat text)</card></wml>" >long.wml
  run bash -c '"$0" -t trace long.wml >/dev/full' "$UNWML"
  [ "$status" = 1 ]
  [ "$output" = "unwml: standard output: No space left on device" ]
  run unwml -t trace -o out/ long.wml
  [ "$status" = 0 ]
  unwml -t trace long.wml | cmp - out/long.trace
  [ "$(tail -n 1 out/long.trace)" = 'SOEmitBreak document' ]
}
