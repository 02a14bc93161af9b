#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tills.sh PROCESSES...: sells the same day with so many programs at once, each a till, and compares
# the shops. Prints a table of the throughput.
source "$(dirname "$0")/common.sh"

(( $# > 0 )) || set -- 1 2 4 8
tills=01,02,03,04,05,06,07,08
IFS=, read -ra names <<<"$tills"
new_shop "$work/empty"

printf '%9s %8s %9s\n' programs seconds lines/s
for programs in "$@"; do
  shop=$work/shop$programs
  cp -r "$work/empty" "$shop"
  begin=$(date +%s%N)
  jobs=()
  for (( i = 0; i < programs; ++i )); do
    own=()
    for (( till = i; till < ${#names[@]}; till += programs )); do own+=("${names[till]}"); done
    day "$shop" --only "$(IFS=,; echo "${own[*]}")" >"$work/out$i" 2>&1 &
    jobs+=($!)
  done
  for i in "${!jobs[@]}"; do
    wait "${jobs[i]}" || { cat "$work/out$i"; fail "program $i of $programs does not reconcile"; }
  done
  microseconds=$(( ($(date +%s%N) - begin) / 1000 ))
  lines=$("$program" -C "$shop" sql documents "SELECT Count(*) AS n FROM HTickets_Lineas" --csv | number)
  printf '%9d %8s %9d\n' "$programs" "$(( microseconds / 1000000 )).$(( microseconds / 100000 % 10 ))" \
    $(( lines * 1000000 / microseconds ))
  state "$shop" >"$work/state$programs"
  diff "$work/state$1" "$work/state$programs" || fail "$programs programs leave another shop than $1"
done
