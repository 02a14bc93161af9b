#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# lost.sh COUNT: kills a day's sales at a random moment, COUNT times for each harm, and then takes the
# latest changes of one database away: its write-ahead file deleted, or garbled, or an older copy put
# back. What can be mended from the tickets must be mended by the same command given again; what
# cannot must be refused until `recover --follow-tickets` says what to do. In the end the shop is what
# it would have been in peace, but for the numbers of lost tickets. RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"

count=${1:?usage: lost.sh COUNT}
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

new_shop "$work/empty"
cp -r "$work/empty" "$work/peace"
begin=$(date +%s%N)
day "$work/peace" >/dev/null || fail "the day in peace does not reconcile"
lasts=$(( ($(date +%s%N) - begin) / 1000 ))  # microseconds

# unnumbered: a state without what the numbers of lost tickets change.
unnumbered() { sed -e '/Ticket_a/d' -e '/Min(Numero)/s/,[0-9]*,[0-9]* *$//'; }
state "$work/peace" | unnumbered >"$work/expected"

# killed_day: a part of the day; the files stay as the killed program leaves them.
killed_day() {
  "$program" day "$work/shop" "${sales[@]}" --tills "$tills" >"$work/out" 2>&1 &
  local pause=$(( lasts / 10 + (RANDOM * 32768 + RANDOM) % lasts ))
  sleep "$(( pause / 1000000 )).$(printf '%06d' $(( pause % 1000000 )))"
  kill -9 $! 2>/dev/null || true
  wait $! 2>/dev/null || true
}

deleted() { rm -f "$work/shop/$1-wal" "$work/shop/$1-shm"; }
garbled() {
  local wal=$work/shop/$1-wal size
  size=$(stat -c %s "$wal" 2>/dev/null || echo 0)
  rm -f "$work/shop/$1-shm"
  (( size > 8192 )) || return 0
  dd if=/dev/urandom of="$wal" bs=512 count=4 seek=$(( (RANDOM * 32768 + RANDOM) % (size / 512) )) \
    conv=notrunc status=none
}
older() {
  deleted "$1"
  cp "$work/empty/$1" "$work/shop/$1"
}

mended=0
refused=0
for harm in deleted garbled older; do
  for database in main.db documents.db; do
    for (( turn = 0; turn < count; ++turn )); do
      rm -rf "$work/shop"
      cp -r "$work/empty" "$work/shop"
      killed_day
      "$harm" "$database"
      if day "$work/shop" >"$work/out" 2>&1; then
        if grep -q '^mended' "$work/out"; then mended=$(( mended + 1 )); fi
      else
        grep -q 'do not belong together' "$work/out" ||
          { cat "$work/out"; fail "$harm $database: the day ends without telling of the loss"; }
        refused=$(( refused + 1 ))
        "$program" recover "$work/shop" >"$work/out" 2>&1 &&
          fail "$harm $database: recover leaves undecided what the day refuses"
        "$program" recover "$work/shop" --follow-tickets >"$work/out" 2>&1 ||
          { cat "$work/out"; fail "$harm $database: the tickets cannot be followed"; }
        day "$work/shop" >"$work/out" 2>&1 ||
          { cat "$work/out"; fail "$harm $database: the day does not go on"; }
      fi
      state "$work/shop" | unnumbered >"$work/found"
      diff "$work/expected" "$work/found" || fail "$harm $database: the shop differs"
      "$program" recover "$work/shop" >"$work/out" || { cat "$work/out"; fail "something is left"; }
      grep -q '^Nothing to mend' "$work/out" || { cat "$work/out"; fail "something is left to mend"; }
    done
  done
done
printf '%d losses: %d mended, %d refused until decided\n' $(( count * 6 )) "$mended" "$refused"
