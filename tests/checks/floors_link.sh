#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# floors_link.sh BUILD: in a build, no floor of CMakeLists.txt calls what only a floor above it has,
# however it came to know it: an include is not needed for that, a declaration of one's own is enough.
source "$(dirname "$0")/../../scripts/lib/common.sh"

build=${1:?the folder of a build}
rank=0
while read -r floor; do
  folder=$build/CMakeFiles/tavelor_$floor.dir
  [[ -d $folder ]] || { echo "$folder is not there" >&2; exit 1; }
  rank=$((rank + 1))
  find "$folder" -name '*.o' -print0 | xargs -r -0 nm -P -A 2>/dev/null |
    awk -v floor="$floor" -v rank="$rank" '
      { object = $1; sub(/:$/, "", object); sub(/.*\.dir\//, "", object); sub(/\.o$/, "", object)
        print rank, floor, object, $2, $3 }'
done < <(tr '\n' ' ' <CMakeLists.txt | grep -o 'tavelor_floor([a-z_]*' | sed 's/.*(//') |
  awk '
    $5 ~ /^[A-TV-Z]$/ { if (!($4 in home) || $1 < home[$4]) home[$4] = $1; next }
    $5 == "U" { if (!(($1, $4) in caller)) caller[$1, $4] = $3; name[$1] = $2 }
    { name[$1] = $2; floors = $1 > floors ? $1 : floors }
    END {
      for (key in caller) {
        split(key, part, SUBSEP)
        if (part[2] in home && home[part[2]] > part[1] + 0) {
          printf "%s of floor %s needs %s of floor %s, which is above it\n", caller[key], name[part[1]], part[2], name[home[part[2]]]
          failed = 1
        }
      }
      if (!floors) { print "There is nothing to look at."; exit 1 }
      if (!failed) printf "%d floors need nothing from above.\n", floors
      exit failed
    }' | c++filt
