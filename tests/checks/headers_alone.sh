#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Each header compiles alone, and no public header costs its users more than the budget, in lines
# after preprocessing (<string>, <memory> and <vector> alone are 38,346 with g++ 12).
# The table is printed dearest first. What the compiler has accepted is kept by its preprocessed
# text in build/headers_alone, so that it reads again only what has changed since.
source "$(dirname "$0")/../../scripts/lib/common.sh"
source tests/checks/headers.sh

budget=46000
all_budget=60000 # of the header that includes the others
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export CXX=${CXX:-g++} scratch budget all_budget
# Inner headers may be made of a library's own.
read -r -a flags <<<"$(pkg-config --cflags libpq)"
export flags_of_inner="${flags[*]}"
accepted=build/headers_alone
version=$("$CXX" --version)
export accepted version
mkdir -p "$accepted"
find "$accepted" -type f -mtime +14 -delete

weigh() {
  local header=$1 kind=$2 text mark lines
  local -a flags=()
  [[ $kind == public ]] || read -r -a flags <<<"$flags_of_inner"
  text="$scratch/${header//\//-}.ii"
  # The compiler reads the preprocessed text, so that the header is read once.
  if ! "$CXX" -std=c++20 -I . "${flags[@]}" -E -P -x c++ -include "$header" /dev/null -o "$text"; then
    echo "$header does not compile alone" >&2
    return 1
  fi
  mark=$accepted/$({ echo "$version"; cat "$text"; } | sha256sum | cut -d ' ' -f 1)
  if [[ ! -f $mark ]] && ! "$CXX" -std=c++20 -w -fsyntax-only -x c++ "$text"; then
    echo "$header does not compile alone" >&2
    return 1
  fi
  touch "$mark"
  lines=$(wc -l <"$text")
  rm -f "$text"
  printf '%7d  %-7s  %s\n' "$lines" "$kind" "$header"
  [[ $header == tavelor/tavelor.hpp ]] && budget=$all_budget
  if [[ $kind == public && $lines -gt $budget ]]; then
    echo "$header is $lines lines after preprocessing; the budget of a public header is $budget" >&2
    return 1
  fi
}
export -f weigh

status=0
{
  public_headers | sed 's/$/ public/'
  private_headers | sed 's/$/ private/'
} | xargs -r -L 1 -P "$(cores)" bash -c 'weigh "$@"' weigh >"$scratch/table" || status=1
sort -rn "$scratch/table"
exit $status
