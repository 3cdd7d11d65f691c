#!/bin/bash
# recipes_test.sh SOURCE: applies the recipes of docs/architecture.md to a copy of the sources,
# builds it, and looks for what each of them adds.
set -euo pipefail
source=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir "$work/copy"
git -C "$source" ls-files -z | (cd "$source" && xargs -0 cp --parents -t "$work/copy")
cd "$work/copy"
for recipe in center accesskey smile tis620 links; do
  tests/docs/run_blocks.py docs/architecture.md --extract $recipe.patch >../recipe
  patch -p1 --fuzz=2 --no-backup-if-mismatch <../recipe
done
cmake --preset release -DVS_WML_BUILD_TESTS=OFF -DVS_WML_BUILD_EXAMPLES=OFF
cmake --build --preset release -j "${JOBS:-2}"

# trace MARKUP CALL: the call is among those that the markup leads to.
trace() {
  printf '%b' "$1" >../deck.wml
  build/release/unwml/unwml --identity 1151 --to trace ../deck.wml >../trace
  if ! grep -qxF "$2" ../trace; then
    echo "no '$2' in:"
    cat ../trace
    exit 1
  fi
}

trace '<wml><card><center>x</center></card></wml>' 'SOSetProperty alignment center'
trace '<wml><card><p><a href="x" accesskey="7">y</a></p></card></wml>' 'SOEmitChar "7y"'
trace '<wml><card><p>&smile;</p></card></wml>' 'SOEmitChar "\{263A}"'
trace '<wml><head><meta http-equiv="content-type" content="charset=tis-620"/></head></wml>' \
  'SOSwitchCharset 0xA0B0100'
build/release/unwml/unwml --to links examples/decks/harbour.wml | grep -qx '#times	Departures'
