#!/usr/bin/env bats
# Each completion, loaded by the shell that it is for and asked for by its Tab key.

bats_require_minimum_version 1.5.0

setup() {
  cd "$BATS_TEST_TMPDIR" || return 1
  export LC_ALL=C.UTF-8 HOME=$PWD TERM=xterm
  mkdir bin 'a folder'
  : >'x y.wml'
  # What the shell makes of the line, where unwml itself would run.
  printf '#!/bin/sh\nfor word; do echo "<$word>"; done >>"%s/words"\n' "$PWD" >bin/unwml
  chmod +x bin/unwml
}

# The lines of each case, keys and what comes of them; "~" is the Tab key.
readonly cases=(
  'unwml --to=h~' '<--to=html>'
  'unwml --to h~' '<--to> <html>'
  'unwml -t mark~' '<-t> <markdown>'
  'unwml --ident~' '<--identity>'
  'unwml --no-r~' '<--no-raw>'
  'unwml --assets a~' '<--assets> <a folder>'
  'unwml x~' '<x y.wml>'
)

# press SHELL START: types START and the cases into the shell, each when the one before is done.
press() {
  local keys
  {
    echo "$2"
    for ((i = 0; i < ${#cases[@]}; i += 2)); do
      keys=${cases[i]//\~/$'\t'}
      printf '%s\n' "$keys"
      printf 'echo -- >>words\n'
    done
    echo exit
  } >keys
  : >words
  timeout 60 script -qec "$1" /dev/null <keys >screen 2>&1 || true
}

check() {
  local expected=
  for ((i = 1; i < ${#cases[@]}; i += 2)); do expected+="${cases[i]} -- "; done
  result=$(tr '\n' ' ' <words | sed 's,/>,>,g')
  if [ "$result" != "$expected" ]; then
    cat screen
    echo "words: $result"
    echo "expected: $expected"
    return 1
  fi
}

@test "bash" {
  command -v script >/dev/null || skip "no script"
  "$UNWML" --print bash >unwml.bash
  press 'bash --norc --noprofile -i' 'PATH=$PWD/bin:$PATH; source unwml.bash'
  check
}

@test "zsh" {
  command -v script >/dev/null && command -v zsh >/dev/null || skip "no zsh"
  mkdir functions
  "$UNWML" --print zsh >functions/_unwml
  press 'zsh -f -i' 'PATH=$PWD/bin:$PATH; fpath=($PWD/functions $fpath); autoload -U compinit; compinit -u -d dump'
  check
}

@test "fish" {
  command -v fish >/dev/null || skip "no fish"
  mkdir -p .config/fish/completions
  "$UNWML" --print fish >.config/fish/completions/unwml.fish
  complete() { PATH=$PWD/bin:$PATH XDG_CONFIG_HOME=$PWD/.config fish -c "complete -C '$1'" | cut -f1; }
  [ "$(complete 'unwml --to=h')" = --to=html ]
  [ "$(complete 'unwml --to h')" = html ]
  [ "$(complete 'unwml -t mark')" = markdown ]
  [ "$(complete 'unwml --ident')" = --identity ]
  [ "$(complete 'unwml --no-r')" = --no-raw ]
  [ "$(complete 'unwml --assets a')" = 'a folder/' ]
  [ "$(complete 'unwml x')" = 'x y.wml' ]
  [ "$(complete 'unwml --col' | wc -l)" = 1 ]
}
