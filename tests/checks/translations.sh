#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Pages that are there in Spanish too, README.es.md and docs/es/*.md, keep in step with their
# originals: the same blocks in the same order (headings and their levels, paragraphs, items, rows of
# tables, fenced blocks), in each the same words in code and links to the same pages. Output and
# snippets are the same to the letter; comments in C++ and what stands behind two blanks in other
# fenced blocks is translated.
source "$(dirname "$0")/../../scripts/lib/common.sh"

# One line a block: where it begins, what it is, and what must be the same.
skeleton() {
  awk '
    function flush_block(    text, count, i, j, word, list, all) {
      if (kind == "") return
      text = block; count = 0; all = ""
      while (match(text, /`[^`]+`/)) {
        list[++count] = substr(text, RSTART, RLENGTH)
        text = substr(text, 1, RSTART - 1) " " substr(text, RSTART + RLENGTH)
      }
      while (match(text, /\]\([^)]+\)/)) {
        word = substr(text, RSTART + 2, RLENGTH - 3)
        sub(/^.*\//, "", word); sub(/\.es\.md/, ".md", word)
        list[++count] = "->" word
        text = substr(text, RSTART + RLENGTH)
      }
      for (i = 2; i <= count; i++) {
        word = list[i]
        for (j = i - 1; j >= 1 && list[j] > word; j--) list[j + 1] = list[j]
        list[j + 1] = word
      }
      for (i = 1; i <= count; i++) all = all " " list[i]
      print begin "\t" kind all
      kind = ""; block = ""
    }
    function start(what, text) { flush_block(); kind = what; begin = FNR; block = text }
    fenced && /^ *```/ { fenced = 0; next }
    fenced {
      text = $0
      if (language == "cpp") {
        sub(/ *\/\/.*$/, "", text)
      } else if (language != "text") {
        match(text, /^ */)
        indent = RLENGTH
        rest = substr(text, indent + 1)
        sub(/  +.*$/, "", rest)
        text = substr(text, 1, indent) rest
      }
      if (text ~ /[^ ]/) print FNR "\tline of a fenced block " text
      next
    }
    /^ *```/ {
      flush_block()
      fenced = 1; language = $0; sub(/^ *```/, "", language)
      print FNR "\tfenced block " language
      next
    }
    /^#+ / { match($0, /^#+/); start("heading " RLENGTH, $0); flush_block(); next }
    /^<!--/ { flush_block(); print FNR "\t" $0; next }
    /^ *$/ { flush_block(); next }
    /^\|/ { start("row of " gsub(/\|/, "|") - 1 " cells", $0); flush_block(); next }
    /^ *(-|[0-9]+\.) / { start("item", $0); next }
    kind == "" { start("paragraph", $0); next }
    { block = block " " $0 }
    END { flush_block() }' "$1"
}

status=0
count=0
while IFS= read -r page; do
  case $page in
    docs/es/*) original=docs/${page#docs/es/} ;;
    *) original=${page%.es.md}.md ;;
  esac
  if [[ ! -f $original ]]; then
    echo "$page:1: there is no $original"
    status=1
    continue
  fi
  count=$((count + 1))
  # The first block that differs: those behind it would all seem to.
  difference=$(awk -F '\t' -v page="$page" -v original="$original" '
    NR == FNR { place[FNR] = $1; said[FNR] = $2; blocks = FNR; next }
    $2 != said[FNR] {
      there = FNR <= blocks ? original ":" place[FNR] " has\n  " said[FNR] : original " has no more"
      print page ":" $1 ": is not in step with its original. Here is\n  " $2 "\nwhere " there
      found = 1
      exit
    }
    { last = FNR }
    END {
      if (!found && last < blocks)
        print page ":" $1 ": ends before its original, which at " original ":" place[last + 1] " has\n  " said[last + 1]
    }' <(skeleton "$original") <(skeleton "$page"))
  if [[ -n $difference ]]; then
    echo "$difference"
    status=1
  fi
done < <(own_files '*.es.md' 'docs/es/*.md')
[[ $status -eq 0 ]] && echo "All $count translations are in step with their originals."
exit $status
