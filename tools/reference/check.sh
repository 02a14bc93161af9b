#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# check.sh SITE TAVELOR: the reference is whole. Each class that the command TAVELOR knows has its
# page and each of its members an entry there, and every link inside the site, of its pages and of
# the index of its search, leads to a place that is there.
set -euo pipefail
export LC_ALL=C.UTF-8
site=$1
tavelor=$2
status=0

members=0
classes=$("$tavelor" classes | awk '/\{[0-9A-F-]+\}$/ { print $1 }')
for class in $classes; do
  page=$site/classes/$class.html
  if [[ ! -f $page ]]; then
    echo "$page: the class $class has no page"
    status=1
    continue
  fi
  while IFS= read -r member; do
    members=$((members + 1))
    grep -qF " id=\"$member\"" "$page" || {
      echo "$page: the member $class.$member has no entry"
      status=1
    }
  done < <("$tavelor" classes "$class" |
    sed -nE 's/^ *[0-9]+  (property )?([^ (]+).*/\2/p')
done
[[ $(wc -w <<<"$classes") -gt 0 ]] || { echo "$tavelor names no class"; status=1; }

cd "$site"
find . -name '*.html' -printf '%P\n' | LC_ALL=C sort | xargs -d '\n' awk '
  # The path that a link on a page means, without dots.
  function resolved(page, target,    parts, n, kept, i, path) {
    sub(/[^\/]*$/, "", page)
    n = split(page target, parts, "/")
    kept = 0
    for (i = 1; i <= n; i++) {
      if (parts[i] == "." || parts[i] == "") continue
      if (parts[i] == "..") { kept--; continue }
      parts[++kept] = parts[i]
    }
    path = ""
    for (i = 1; i <= kept; i++) path = path (i > 1 ? "/" : "") parts[i]
    return path
  }
  function decoded(text) {
    gsub(/&amp;/, "\\&", text); gsub(/&lt;/, "<", text); gsub(/&gt;/, ">", text); gsub(/&quot;/, "\"", text)
    return text
  }
  function need(place, page, target) {
    if (target == "" || target ~ /^[a-z]+:/) return
    count++
    wanted[count] = target; from[count] = place; page_of[count] = page
  }
  FNR == 1 { there[FILENAME] = 1 }
  {
    text = $0
    while (match(text, /(id|name|href|src)="[^"]*"/)) {
      word = substr(text, RSTART, RLENGTH)
      text = substr(text, RSTART + RLENGTH)
      cut = index(word, "=")
      value = decoded(substr(word, cut + 2, length(word) - cut - 2))
      if (word ~ /^(id|name)/) place[FILENAME "#" value] = 1
      else need(FILENAME ":" FNR, FILENAME, value)
    }
  }
  END {
    while ((getline line < "search-index.js") > 0) {
      if (split(line, field, "\",\"") >= 4) { need("search-index.js: " field[1], "", field[3]); found++ }
    }
    if (!found) { print "search-index.js: nothing can be found"; failed = 1 }
    for (i = 1; i <= count; i++) {
      hash = index(wanted[i], "#")
      file = hash ? substr(wanted[i], 1, hash - 1) : wanted[i]
      anchor = hash ? substr(wanted[i], hash + 1) : ""
      sub(/\?.*$/, "", file)
      file = file == "" ? page_of[i] : resolved(page_of[i], file)
      if (file in there || (getline line < file) >= 0) {
        close(file)
        if (anchor == "" || file !~ /\.html$/ || (file "#" anchor) in place) continue
        # Doxygen names places of its own pages that it does not make, for what is private.
        if (page_of[i] ~ /^cpp\//) continue
      }
      print from[i] ": leads to " wanted[i] ", which is not there"
      failed = 1
    }
    if (!failed) printf "%d links inside the site lead somewhere; %d entries can be found.\n", count, found
    exit failed
  }' || status=1
[[ $status -eq 0 ]] && echo "$(wc -w <<<"$classes") classes have their pages, and their $members members an entry each."
exit $status
