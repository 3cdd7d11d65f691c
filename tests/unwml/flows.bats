#!/usr/bin/env bats
# unwml --flow, as a user meets it.

bats_require_minimum_version 1.5.0
load helpers

flow() {  # NAME STEPS...
  printf '{"name": "%s", "documents": {"http://a.example/": {"body": "%s"}}, ' \
    "$1" "<wml><card id='a'/></wml>"
  printf '"start": "http://a.example/",\n"steps": [\n%s]}\n' "$2"
}

@test "flows are played, and the status tells how they went" {
  flow good '{"expect": {"card": "a"}}' >good.json
  flow bad '{"expect": {"card": "b"}}' >bad.json
  flow none '{"expect": {"crad": "a"}}' >none.json
  run --separate-stderr unwml --flow good.json
  [ "$status" = 0 ]
  [ "$output" = "ok good
1 passed, 0 failed" ]
  run --separate-stderr unwml --flow bad.json good.json
  [ "$status" = 1 ]
  [ "$output" = 'FAIL bad: step 1: card: expected "b", there was "a"
ok good
1 passed, 1 failed' ]
  [ "$stderr" = "unwml: bad.json:3: shown: http://a.example/; last request: GET http://a.example/" ]
  run --separate-stderr unwml --flow none.json missing.json good.json
  [ "$status" = 2 ]
  [ "$output" = "ok good
1 passed, 0 failed" ]
  [ "$stderr" = 'unwml: none.json: no flow: step 1: unknown member "crad"; is "card" meant?
unwml: missing.json: No such file or directory' ]
  run unwml --flow - <good.json
  [ "$status" = 0 ]
}
