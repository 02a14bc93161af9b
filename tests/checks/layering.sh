#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Includes run downward only. The floors are those of CMakeLists.txt, from the ground up: the
# tavelor_floor() calls are the one place that lists them. Besides:
# - an engine's folder is seen by the services floor only, which chooses the engine: the floors
#   between the dialect's and the record set's are engines;
# - a public header includes no private header and nothing of the libraries behind it;
# - a quoted include starts at the root of the repository.
source "$(dirname "$0")/../../scripts/lib/common.sh"
source tests/checks/headers.sh

floors=$(tr '\n' ' ' <CMakeLists.txt | grep -o 'tavelor_floor([^)]*)' | sed 's/tavelor_floor(//; s/)//')

own_files 'tavelor/*.hpp' 'tavelor/*.cpp' | xargs -r -d '\n' grep -Hn '^ *# *include' |
  awk -v floors="$floors" -v private="$(private_headers)" '
    BEGIN {
      count = split(floors, lines, "\n")
      for (rank = 1; rank <= count; rank++) {
        words = split(lines[rank], word, " ")
        for (i = 2; i <= words && word[i] != "LINK"; i++)
          if (word[i] ~ /^tavelor(\/|$)/) {
            sub(/\.cpp$/, "", word[i])   # a single source stands for its header too
            place[word[i]] = rank
            name[rank] = word[1]
            if (word[1] == "recordset") recordset = rank
            if (word[1] == "dialect") dialect = rank
          }
      }
      place["tavelor/tavelor"] = count   # the header to begin with stands on top of all
      n = split(private, list, "\n")
      for (i = 1; i <= n; i++) isPrivate[list[i]] = 1
    }
    # The rank of the innermost place that is a floor; 0 when there is none.
    function rankOf(path) {
      sub(/\.[ch]pp$/, "", path)
      do if (path in place) return place[path]; while (sub(/\/[^\/]*$/, "", path))
      return 0
    }
    function complain(text) { print line ": " text; failed = 1 }
    {
      split($0, part, ":")
      file = part[1]; line = file ":" part[2]
      own = rankOf(file)
      isPublic = file ~ /\.hpp$/ && !(file in isPrivate)
      if (!own) { complain("is on no floor of CMakeLists.txt"); next }
      if (match($0, /<[^>]*>/)) {
        header = substr($0, RSTART + 1, RLENGTH - 2)
        if (isPublic && header ~ /^(sqlite3|libpq|qrencode|curl|boost|nlohmann|argon2|fmt|pugi|utf8proc|iostream|regex|iomanip)/)
          complain("a public header includes <" header ">")
        if (header ~ /^sqlite3/ && file !~ /^tavelor\/services\/sqlite\//)
          complain("only tavelor/services/sqlite may include <" header ">")
        if (header ~ /^libpq/ && file !~ /^tavelor\/services\/postgres\//)
          complain("only tavelor/services/postgres may include <" header ">")
        if (header ~ /^curl/ && file !~ /^tavelor\/sending\//)
          complain("only tavelor/sending may include <" header ">")
        if (header ~ /^boost\// && file !~ /^tavelor\/web\/line.hpp$/)
          complain("only tavelor/web/line.hpp may include <" header ">")
        if (header ~ /^nlohmann\// && file !~ /^tavelor\/web\//)
          complain("only tavelor/web may include <" header ">")
        next
      }
      if (!match($0, /"[^"]*"/)) next
      header = substr($0, RSTART + 1, RLENGTH - 2)
      if (header !~ /^tavelor\//) { complain("\"" header "\" does not start at the root"); next }
      if (system("test -f " header) != 0) next   # made by the build
      below = rankOf(header)
      if (below > own)
        complain("floor " name[own] " includes " header " of floor " name[below] ", which is above it")
      if (below > dialect && below < recordset && own != below && name[own] != "services")
        complain("floor " name[own] " sees the engine in " header)
      if (isPublic && header in isPrivate) complain("a public header includes the private " header)
    }
    END {
      if (!failed) printf "%d includes run downward over %d floors.\n", NR, count
      exit failed
    }'
