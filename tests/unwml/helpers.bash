# What the tests of unwml share.

setup() {
  cd "$BATS_TEST_TMPDIR" || return 1
  export LC_ALL=C.UTF-8 TERM=xterm
  unset NO_COLOR PAGER UNWML_PAGER LESS
  deck a.wml 'Apple <b>pie</b>'
}

deck() { # deck FILE TEXT
  mkdir -p "$(dirname "$1")"
  echo "<wml><card id='c' title='T'><p>$2</p></card></wml>" >"$1"
}

long_deck() { # long_deck FILE PARAGRAPHS
  {
    echo "<wml><card id='c' title='T'>"
    seq -f '<p>paragraph %.0f of a deck that goes on</p>' "$2"
    echo "</card></wml>"
  } >"$1"
}

unwml() { "$UNWML" "$@"; }

# await COMMAND...: until it succeeds.
await() {
  for _ in $(seq 600); do
    ! "$@" || return 0
    sleep 0.05
  done
  echo "waited in vain for: $*"
  return 1
}
