#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# kill.sh COUNT: kills a day's sales COUNT times at random moments, each time in a new shop and up to
# three times in a row; gives the same command again, and compares the shop with one that was left in
# peace. RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"

count=${1:?usage: kill.sh COUNT}
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

new_shop "$work/empty"
cp -r "$work/empty" "$work/peace"
begin=$(date +%s%N)
day "$work/peace" >/dev/null || fail "the day in peace does not reconcile"
lasts=$(( ($(date +%s%N) - begin) / 1000 ))  # microseconds
state "$work/peace" >"$work/expected"

killed=0
mended=0
while (( killed < count )); do
  rm -rf "$work/shop"
  cp -r "$work/empty" "$work/shop"
  for (( turn = RANDOM % 3 + 1; turn > 0; --turn )); do
    # Without the function: a shell around the program would be killed in its place.
    "$program" day "$work/shop" "${sales[@]}" --tills "$tills" >"$work/out" 2>&1 &
    pause=$(( (RANDOM * 32768 + RANDOM) % lasts ))
    sleep "$(printf '0.%06d' $(( pause % 1000000 )) | sed "s/^0/$(( pause / 1000000 ))/")"
    kill -9 $! 2>/dev/null && killed=$(( killed + 1 ))
    wait $! 2>/dev/null || true
  done
  day "$work/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "after $killed kills the day does not reconcile"; }
  grep -q '^mended' "$work/out" && mended=$(( mended + 1 ))
  state "$work/shop" >"$work/found"
  diff "$work/expected" "$work/found" || fail "after $killed kills the shop differs"
  for page in "$work"/peace/export/day-*.htm; do
    [[ -s $work/shop/export/${page##*/} ]] || fail "after $killed kills a day has no page"
  done
  find "$work/shop" -name '*.new-*' | grep -q . && fail "after $killed kills the half of a file is left"
  "$program" recover "$work/shop" | grep -q '^Nothing to mend' || fail "something is left to mend"
done
printf '%d kills; %d times a sale or a closing between the two databases was mended\n' "$killed" "$mended"
