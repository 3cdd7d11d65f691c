#!/bin/bash
# parallel_test.sh SOURCE: the recipe of docs/many-machines.md under failures. A document that is
# missing at first is retried; a run that is killed goes on; nothing is lost or doubled.
# unwml is taken from PATH.
set -euo pipefail
source=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

for name in convert-batch convert-all; do
  "$source/tests/docs/run_blocks.py" "$source/docs/many-machines.md" --extract "$name" >recipe
  install -m 755 recipe "$name"
done

# Six batches of two documents.
mkdir out decks
for i in 1 2 3 4 5 6 7 8 9 10 11 12; do
  echo "<wml><card id='c$i'><p>deck $i</p></card></wml>" >"decks/$i.wml"
  echo "decks/$i.wml" >>documents.txt
done
split --lines=2 --suffix-length=5 --numeric-suffixes documents.txt out/batch.

sources() {
  cat out/batch.*.jsonl | python3 -c '
import json, sys
print("\n".join(sorted(json.loads(line)["source"] for line in sys.stdin)))'
}

fail() {
  echo "$1"
  shift
  [ $# = 0 ] || cat "$@"
  exit 1
}

# The run is killed while its third and fourth batch, one in each slot, wait for documents that
# do not come: FIFOs that nobody writes to.
mkdir kept
mv decks/5.wml decks/7.wml kept/
mkfifo decks/5.wml decks/7.wml
setsid ./convert-all &
run=$!
until [ -e out/job.log ] && [ "$(wc -l <out/job.log)" -ge 3 ]; do sleep 0.05; done
while pkill -KILL -s "$run"; do sleep 0.05; done # new jobs may start meanwhile
wait $run 2>/dev/null || true
mv -f kept/*.wml decks/
[ ! -e out/batch.00002.jsonl ] || fail "the batch that was interrupted has a result"
before=$(stat -c %Y%i out/batch.00000.jsonl)

# It goes on, and fails at a document that is missing in every try.
mv decks/12.wml kept.wml
! ./convert-all || fail "a missing document went unnoticed"
[ "$(stat -c %Y%i out/batch.00000.jsonl)" = "$before" ] || fail "a finished batch was run again"
grep -q 'decks/12.wml' out/batch.00005.err || fail "the failed document is not named" out/*.err
[ "$(sources | wc -l)" = 11 ] || fail "documents beside the failed one are missing"

# When the document is there, only its batch is run again.
mv kept.wml decks/12.wml
./convert-all
[ "$(stat -c %Y%i out/batch.00000.jsonl)" = "$before" ] || fail "a finished batch was run again"
sources | diff <(sort documents.txt) - || fail "documents are lost or doubled"

# Within one run: a document that comes back is found by a retry.
rm -r out/job.log out/*.jsonl
mv decks/1.wml kept.wml
cat >wrapper <<'X'
#!/bin/sh
[ "$1" != "$PWD/out/batch.00000" ] || { echo try >>tries; [ "$(wc -l <tries)" != 2 ] || mv kept.wml decks/1.wml; }
exec ./convert-batch "$1"
X
chmod +x wrapper
sed -i 's|/convert-batch|/wrapper|' convert-all
./convert-all
[ "$(wc -l <tries)" = 2 ] || fail "the failed batch was not run twice" tries
sources | diff <(sort documents.txt) - || fail "documents are lost or doubled after a retry"
