#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# fiscal.sh COUNT [server]: kills the programs that sell a day COUNT times at random moments in a shop that
# keeps the law's records, in files or on a server, and looks at the records each time: no ticket is
# without its record, no record without its ticket, and the chain is whole. At the end the day is finished
# and compared with one that was left in peace. Each till is a program of its own. RANDOM_SEED repeats
# a run.
count=${1:?usage: fiscal.sh COUNT [server]}
if [[ ${2:-} == server ]]; then
  TILLS=${TILLS:-01,02,03}
  source "$(dirname "$0")/on_server.sh"
else
  source "$(dirname "$0")/common.sh"
  RANDOM=${RANDOM_SEED:-$$}
  printf 'seed %s\n' "${RANDOM_SEED:-$$}"
fi

# fresh: the shop as it was before the first sale. folder_of TILL: where its program finds it.
if [[ ${2:-} == server ]]; then
  server_start "$place" $$
  begin_shop 300 "$(socket "$place")"
  sales=(--sales "$work/sales.csv" --grant-credit)
  server_sql "$place" postgres -c 'ALTER DATABASE shop RENAME TO empty'
  fresh() {
    server_sql "$place" postgres -c 'DROP DATABASE IF EXISTS shop WITH (FORCE)' -c 'CREATE DATABASE shop TEMPLATE empty'
  }
  folder_of() { echo "$work/till$1"; }
else
  new_shop "$work/empty"
  "$program" fiscal setup "$work/empty" --nif 89890001K --name "Colmado Rius" --producer-nif B12345674 \
    --producer "Talleres Norte SL" --installation 1 --mode "${MODE:-verifactu}" --start 2024-10-28 >/dev/null
  fresh() {
    rm -rf "$work/shop"
    cp -r "$work/empty" "$work/shop"
  }
  folder_of() { echo "$work/shop"; }
fi
first=$(folder_of "${tills%%,*}")

# check WHAT: the records; ends the run where something is wrong with them.
check() { "$program" -C "$first" fiscal check >"$work/checked" 2>&1 || { cat "$work/checked"; fail "$1"; }; }

fresh
begin=$(date +%s%N)
day "$first" >"$work/out" 2>&1 || { cat "$work/out"; fail "the day in peace does not reconcile"; }
lasts=$(( ($(date +%s%N) - begin) / 1000 ))  # microseconds
check "the records of the day in peace are not whole"
expected=$(sed -n 's/.*; total //p' "$work/checked")

killed=0  # times
died=0    # programs
fresh
while (( killed < count )); do
  # A program for each till, so that they are killed while they wait for each other too.
  programs=()
  for till in ${tills//,/ }; do
    "$program" day "$(folder_of "$till")" "${sales[@]}" --tills "$tills" --only "$till" >"$work/out-$till" 2>&1 &
    programs+=($!)
  done
  pause=$(( (RANDOM * 32768 + RANDOM) % lasts ))
  sleep "$(( pause / 1000000 )).$(printf '%06d' $(( pause % 1000000 )))"
  before=$died
  for each in "${programs[@]}"; do
    kill -9 "$each" 2>/dev/null || true
    wait "$each" 2>/dev/null && status=0 || status=$?
    if (( status == 137 )); then died=$(( died + 1 )); fi  # else its day was over
  done
  if (( died > before )); then
    killed=$(( killed + 1 ))
  else
    lasts=$(( lasts * 2 / 3 + 1 ))  # the computer has less to do than it had
  fi
  check "after $killed kills the records are not whole"
  # What is sold is not sold again: soon there would be nothing left to be killed in.
  if (( died == before || RANDOM % 3 == 0 )); then fresh; fi
done
day "$first" >"$work/out" 2>&1 || { cat "$work/out"; fail "after $killed kills the day does not reconcile"; }
check "the records of the finished day are not whole"
[[ $(sed -n 's/.*; total //p' "$work/checked") == "$expected" ]] || fail "the records come to another total"
printf '%d kills of %d programs; %s\n' "$killed" "$died" "$(head -1 "$work/checked")"
