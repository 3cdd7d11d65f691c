#!/bin/bash
# answers_test.sh SOURCE: "Find your way" in CONTRIBUTING.md gives each question the one file of the
# filter that holds the answer: a word of the code that stands in no other.
set -euo pipefail
cd "$1"

words=(
  'uint16_t DecodeMultiByte(' filter/input/decoder.cpp
  'EndsEntityName(' filter/lexer/reference.cpp
  'SendBlank(' filter/text/characters.cpp
  'PROP_ATTR_BOLD +' filter/format/style.cpp
  'EndElement(' filter/elements/tag_processing.cpp
  'SODescribeCell(&' filter/tables/table_output.cpp
  '"href"' filter/data/attribute_list.h
)
# shellcheck disable=SC2016 # backquotes of Markdown
answers=$(sed -n '/^## Find your way/,/^## Style/s/^| .* | `\(.*\)` |$/\1/p' CONTRIBUTING.md | sort)
expected=$(for ((i = 1; i < ${#words[@]}; i += 2)); do echo "${words[i]}"; done | sort)
diff <(echo "$expected") <(echo "$answers")
for ((i = 0; i < ${#words[@]}; i += 2)); do
  found=$(grep -rlF --include='*.h' --include='*.cpp' "${words[i]}" filter | sort)
  if [ "$found" != "${words[i + 1]}" ]; then
    printf '%s stands in:\n%s\n' "${words[i]}" "$found"
    exit 1
  fi
done
