#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# move.sh COUNT: moves a shop with a day's sales to a private server and back, COUNT times, and kills
# each move at a random moment before it is given again. At every moment the shop must hold what it
# held; then the day goes on there. Before, wrong passwords, a target that is taken and a till that is
# selling must be refused. Ends with 77 where no server is installed. RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"
tests=$(realpath "$(dirname "$0")")
source "$tests/../../scripts/lib/common.sh"
source scripts/lib/server.sh

count=${1:?usage: move.sh COUNT}
server_programs >/dev/null || { echo "No server to test on: PostgreSQL's server is not installed."; exit 77; }
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

place=/tmp/tavelor-server-move-$$
trap 'server_stop "$place" $$; rm -rf "${work:?}"' EXIT
server_start "$place" $$ --tcp
server_sql "$place" postgres -c 'CREATE DATABASE shop TEMPLATE template0' -c 'CREATE DATABASE taken TEMPLATE template0'
socket=${place//\//%2F}
server="postgresql://tavelor@$socket:$(cat "$place/port")/shop"

new_shop "$work/shop"
day "$work/shop" >/dev/null || fail "the day does not reconcile"
state "$work/shop" >"$work/expected"

# settled: what the shop is worth, wherever it is.
settled() {
  state "$work/shop" >"$work/found" || fail "$1: the shop does not open"
  diff "$work/expected" "$work/found" || fail "$1: the shop differs"
}
# on_server: whether the settings name it.
on_server() { grep -q 'engine="postgresql"' "$work/shop/tavelor.xml"; }
# refused WHAT PATTERN ARGUMENT...: the move is, with that reason, and changes nothing.
refused() {
  local what=$1 pattern=$2
  shift 2
  ! "$program" move "$work/shop" "$@" >"$work/out" 2>&1 || fail "$what: moved"
  grep -q "$pattern" "$work/out" || { cat "$work/out"; fail "$what: not told"; }
  on_server && fail "$what: the settings are others"
  settled "$what"
}

PGPASSWORD=wrong refused "a wrong password" 'password authentication failed' \
  --to "postgresql://tavelor@127.0.0.1:$(cat "$place/port")/shop"
! grep -q wrong "$work/out" || fail "the password is shown"
refused "no such database" 'Error 53' --to "${server%/shop}/nowhere"
"$program" new "$work/other" --server "${server%/shop}/taken" >/dev/null
refused "a target that is taken" 'holds tables already' --to "${server%/shop}/taken"

# there, back: the move, and how long it takes in microseconds when nobody kills it.
begin=$(date +%s%N)
"$program" move "$work/shop" --to "$server" >"$work/out" || { cat "$work/out"; fail "not moved there"; }
there=$(( ($(date +%s%N) - begin) / 1000 ))
on_server || fail "the settings are the old ones"
settled "moved there"
begin=$(date +%s%N)
"$program" move "$work/shop" --to-files >"$work/back" || { cat "$work/back"; fail "not moved back"; }
back=$(( ($(date +%s%N) - begin) / 1000 ))
settled "moved back"
# Counts and sums of all databases, both ways.
diff <(sed -n 's/.*: \([0-9]* tables\)/\1/p' "$work/out") <(sed -n 's/.*: \([0-9]* tables\)/\1/p' "$work/back") ||
  fail "sums differ"

killed=0
for (( turn = 0; turn < count * 2; ++turn )); do
  if on_server; then
    lasts=$back
    way=(--to-files)
  else
    lasts=$there
    way=(--to "$server")
  fi
  pause=$(( (RANDOM * 32768 + RANDOM) % (lasts + lasts / 8) ))
  "$program" move "$work/shop" "${way[@]}" >"$work/out" 2>&1 &
  sleep "$(( pause / 1000000 )).$(printf '%06d' $(( pause % 1000000 )))"
  if kill -9 $! 2>/dev/null; then killed=$(( killed + 1 )); fi
  wait $! 2>/dev/null || true
  settled "killed after $pause us"
  # Either it had moved before it died, or the next one does.
  if on_server; then where=--to; else where=--to-files; fi
  if [[ ${way[0]} == "$where" ]]; then continue; fi
  "$program" move "$work/shop" "${way[@]}" >"$work/out" 2>&1 ||
    { cat "$work/out"; fail "killed after $pause us: the next move does not finish"; }
  settled "moved after the kill"
done

on_server || "$program" move "$work/shop" --to "$server" >/dev/null || fail "not moved at last"
day "$work/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the day does not go on"; }
settled "the day again"
printf '%d moves, %d of them killed\n' $(( count * 2 + 2 )) "$killed"
