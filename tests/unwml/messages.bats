#!/usr/bin/env bats
# What is told of the documents, on standard error and around their lines.

bats_require_minimum_version 1.5.0
load helpers

warned_deck() { echo '<wml><card><p>x</p></card>stray</wml>' >"$1"; }

@test "warnings are told, and counted at the end of a batch" {
  warned_deck w.wml
  run --separate-stderr unwml w.wml
  [ "$status" = 0 ]
  # shellcheck disable=SC2154
  [[ $stderr == "unwml: w.wml: line 1: "* ]]
  [ "${#stderr_lines[@]}" = 1 ]
  run --separate-stderr unwml a.wml w.wml missing.wml
  [ "$status" = 1 ]
  [ "${#stderr_lines[@]}" = 3 ]
  [[ ${stderr_lines[2]} =~ ^unwml:\ 2\ read,\ 1\ with\ warnings,\ 1\ failed,\ [0-9]+\.[0-9]\ s$ ]]
  run --separate-stderr unwml -t json a.wml w.wml
  [ -z "$stderr" ]
  run --separate-stderr unwml -t json --summary a.wml w.wml
  [[ $stderr == "unwml: 2 read, 1 with warnings, 0 failed, "* ]]
  run --separate-stderr unwml --quiet a.wml w.wml missing.wml
  [ "$stderr" = "unwml: missing.wml: No such file or directory" ]
  run --separate-stderr unwml --no-summary a.wml w.wml
  [ "${#stderr_lines[@]}" = 1 ]
}

@test "a batch on a terminal ends with a summary" {
  command -v script >/dev/null || skip "no script"
  screen=$(script -qefc "'$UNWML' a.wml a.wml >out.txt" /dev/null </dev/null)
  [[ $screen == *"unwml: 2 read, 0 with warnings, 0 failed, "* ]]
  [ -z "$(script -qefc "'$UNWML' --quiet a.wml a.wml >out.txt" /dev/null </dev/null)" ]
}

@test "names cannot hide or turn what is told of them" {
  for name in $'\e[31mred' $'a\nunwml: b' $'\u202etxt.lmw' $'zero\u200bwidth' $'\xff\xfe' $'\u0085'; do
    run unwml "$name"
    [ "$status" = 1 ]
    [ "${#lines[@]}" = 1 ]
    [[ $output =~ ^unwml:\ [[:print:]]+:\ No\ such\ file\ or\ directory$ ]]
    [[ $output != *$'\u202e'* && $output != *$'\u200b'* ]]
    run unwml --charset "$name" a.wml
    [ "${#lines[@]}" = 2 ]
    [[ $output != *$'\e'* && $output != *$'\u202e'* && $output != *$'\xff'* ]]
  done
  run unwml $'caf\u00e9 \u6771\u4eac \U1F600.wml'
  [ "$output" = $'unwml: caf\u00e9 \u6771\u4eac \U1F600.wml: No such file or directory' ]
}

@test "--with-filename begins each line with its file" {
  long_deck long.wml 5000
  run unwml -H a.wml long.wml
  [ "$status" = 0 ]
  [ "$(grep -c '^a.wml:' <<<"$output")" = 3 ]
  ! grep -qvE '^(a|long).wml:' <<<"$output"
  [ "$(unwml long.wml)" = "$(unwml -H long.wml | cut -d: -f2-)" ]
}

@test "a picture is shown for itself" {
  printf '\0\0\x08\x02\x00\xff' >'p #1%.wbmp'
  run unwml --images blocks 'p #1%.wbmp'
  [ "$status" = 0 ]
  [[ $output == *'▀▀▀▀'* ]]
  [[ $output == *'WBMP, 8 by 2 pixels'* ]]
  unwml -t html 'p #1%.wbmp' | grep -q 'src="data:image/png;base64,'
  echo no >no.wbmp
  run unwml no.wbmp
  [ "$output" = "unwml: no.wbmp: not a WBMP picture" ]
}

# on_terminal COMMAND: what the terminal gets that COMMAND runs on, of 10 rows.
on_terminal() { script -qefc "stty rows 10 cols 80; $1" /dev/null </dev/null | tr -d '\r'; }

@test "what is longer than the screen is paged" {
  command -v script >/dev/null || skip "no script"
  long_deck long.wml 3
  cat >pager <<'PAGER'
#!/bin/sh
echo "LESS=$LESS"
sed 's/^/paged: /'
PAGER
  chmod +x pager
  export PATH="$PWD:$PATH"
  PAGER=pager run on_terminal "'$UNWML' long.wml"
  [[ $output != *paged* ]]
  long_deck long.wml 30
  PAGER=pager run on_terminal "'$UNWML' long.wml missing.wml"
  [ "${lines[0]}" = LESS=FRX ]
  [ "$(grep -c '^paged: .*paragraph' <<<"$output")" = 30 ]
  [[ $output == *"paged: unwml: missing.wml: No such file or directory"* ]]
  UNWML_PAGER=pager PAGER=other run on_terminal "'$UNWML' long.wml"
  [[ $output == *paged* ]]
  for how in "UNWML_PAGER= PAGER=pager '$UNWML'" "PAGER=cat '$UNWML'" "PAGER=pager '$UNWML' --no-pager" \
    "PAGER=pager '$UNWML' -o /dev/tty"; do
    run on_terminal "$how long.wml"
    [ "$status" = 0 ]
    [[ $output != *paged* && $output == *'paragraph 30'* ]]
  done
  PAGER=nowhere run on_terminal "'$UNWML' long.wml"
  [ "${lines[0]}" = 'unwml: PAGER: there is no program "nowhere"' ]
  [[ $output == *'paragraph 30'* ]]
  [[ $(PAGER=pager unwml long.wml) != *paged* ]]
}

@test "leaving the pager ends a batch quietly" {
  command -v script >/dev/null || skip "no script"
  long_deck long.wml 30000
  PAGER='head -n 1' run on_terminal "'$UNWML' long.wml long.wml; echo status \$?"
  [ "${lines[1]}" = "status 0" ]
  [ "${#lines[@]}" = 2 ]
}
