#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A text that is known only when running does not get into a statement without a wrapper: the
# compiler refuses each marked line of forgotten_wrappers.cpp, and no other.
source "$(dirname "$0")/../../scripts/lib/common.sh"

cases=tests/checks/forgotten_wrappers.cpp
flags=(-std=c++20 -I . -w -fsyntax-only)
if "${CXX:=g++}" --version | grep -q clang; then
  flags+=(-ferror-limit=0)
else
  flags+=(-fmax-errors=0)
fi
marked=$(grep -n '// refused$' "$cases" | cut -d: -f1 | sort)
messages=$(LC_ALL=C "$CXX" "${flags[@]}" "$cases" 2>&1) || true
refused=$(sed -n "s|^$cases:\([0-9]*\):[0-9]*: error:.*|\1|p" <<<"$messages" | sort -u)
if ! differ=$(diff <(echo "$marked") <(echo "$refused")); then
  while read -r side line; do
    case $side in
      '<') echo "$cases:$line compiles: $(sed -n "${line}p" "$cases")" >&2 ;;
      '>') echo "$cases:$line does not compile: $(sed -n "${line}p" "$cases")" >&2 ;;
    esac
  done < <(grep '^[<>]' <<<"$differ")
  exit 1
fi
echo "$(wc -l <<<"$marked") forgotten wrappers are refused"
