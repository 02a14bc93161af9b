#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Every path that a page names exists: in links, in `inline code` that starts with a folder of
# this repository, and in the folder maps. A map is a fenced block marked "map"; its lines are a
# path and what is there, indented below the folder that holds it. The other way round, a map shows
# every folder of the root, and all folders of a folder of which it shows one.
source "$(dirname "$0")/../../scripts/lib/common.sh"

status=0
count=0
declare -A shown=() opened=() mapped=() # "PAGE FOLDER", and the pages with a map
need() { # PAGE LINE PATH: the path, from the root, may hold * and <placeholders>
  local path=${3//<*>/\*}
  path=${path%/}
  count=$((count + 1))
  [[ -e $path ]] || compgen -G "$path" >/dev/null && return 0
  echo "$1:$2: $3 is not there"
  status=1
}

while IFS=$'\t' read -r page line kind path; do
  case $kind in
    link)
      [[ $path == /* ]] || path=$(dirname "$page")/$path
      need "$page" "$line" "$(realpath -m --relative-to=. -- "$path")"
      ;;
    map)
      need "$page" "$line" "$path"
      if [[ $path == */ ]]; then
        mapped[$page]=1 shown["$page ${path%/}"]=1 opened["$page $(dirname "$path")"]=1
      fi
      ;;
    *) need "$page" "$line" "$path" ;;
  esac
done < <(own_files '*.md' | xargs -r -d '\n' awk '
  function tell(kind, path) { printf "%s\t%d\t%s\t%s\n", FILENAME, FNR, kind, path }
  FNR == 1 { fence = ""; depth = 0 }
  /^ *```/ { fence = fence ? "" : ($0 ~ /```map *$/ ? "map" : "other"); depth = 0; next }
  fence == "map" {
    if ($0 !~ /[^ ]/) next
    match($0, /^ */); indent = RLENGTH
    while (depth && indents[depth] >= indent) depth--
    split(substr($0, indent + 1), word, /  +/)
    above = depth ? paths[depth] : ""
    # Several folders may share a line.
    n = split(word[1], names, " ")
    for (i = 1; i <= n; i++) tell("map", above names[i])
    depth++; indents[depth] = indent; paths[depth] = above names[1]
    if (paths[depth] !~ /\/$/) paths[depth] = paths[depth] "/"
    next
  }
  fence { next }
  {
    text = $0
    while (match(text, /\]\([^)#: ]+[)#]/)) {
      tell("link", substr(text, RSTART + 2, RLENGTH - 3))
      text = substr(text, RSTART + RLENGTH)
    }
    text = $0
    while (match(text, /`[^`]+`/)) {
      code = substr(text, RSTART + 1, RLENGTH - 2)
      text = substr(text, RSTART + RLENGTH)
      sub(/^\.\//, "", code)
      sub(/[ :].*$/, "", code)
      if (code ~ /^(tavelor|schema|tools|examples|bench|tests|docs|scripts|cmake|fuzz|\.ci)\//) tell("code", code)
    }
  }')

folders=$(own_files '*' | awk -F/ '{ path = $1; for (i = 2; i <= NF; i++) { print path; path = path "/" $i } }' | sort -u)
for page in "${!mapped[@]}"; do
  opened["$page ."]=1
  for folder in $folders; do
    [[ -z ${opened["$page $(dirname "$folder")"]:-} || -n ${shown["$page $folder"]:-} ]] && continue
    echo "$page: the map does not show $folder/"
    status=1
  done
done

[[ $status -eq 0 ]] && echo "All $count paths are there, and the maps show every folder."
exit $status
