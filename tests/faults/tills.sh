#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# tills.sh PROCESSES...: sells the same day with so many programs at once, each a till, and compares
# the shops. Prints a table of the throughput and, where WRITERS names the program of that name, of how
# long threads and processes wait for their turn to write, and by how many one of them was overtaken:
# nobody may be refused.
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

[[ -n ${WRITERS:-} ]] || exit 0
printf '\n%9s %7s %7s %9s %9s %9s %11s %9s %8s\n' \
  processes threads writes 'median ms' '1 in 100' slowest by\ median overtaken refused
for crowd in ${CROWDS:-1:20:30 4:1:150 4:5:30 20:1:30}; do
  IFS=: read -r processes threads each <<<"$crowd"
  "$WRITERS" "$work/writers-$crowd.db" "$processes" "$threads" "$each" | tee "$work/figures"
  [[ $(awk '{print $NF}' "$work/figures") == 0 ]] || fail "$crowd: a writer was refused"
done
