#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# full_disk.sh: sells a day where files may not grow beyond a limit, which to a program is a disk
# without room; then without the limit. The first must fail clearly, the second end as if nothing
# had been.
source "$(dirname "$0")/common.sh"

new_shop "$work/empty"
cp -r "$work/empty" "$work/peace"
day "$work/peace" >/dev/null || fail "the day in peace does not reconcile"
state "$work/peace" >"$work/expected"

largest=$(stat -c %s "$work"/empty/*.db | sort -n | tail -n 1)
for room in ${ROOMS:-64 128 256}; do
  rm -rf "$work/shop"
  cp -r "$work/empty" "$work/shop"
  (
    trap '' XFSZ  # the write fails instead
    ulimit -f $(( largest / 1024 + room ))
    day "$work/shop"
  ) >"$work/out" 2>&1 && fail "with $room KiB of room the day went through"
  grep -qiE 'full|too large|disk' "$work/out" || { cat "$work/out"; fail "the error does not tell of the disk"; }
  sold=$("$program" -C "$work/shop" sql documents "SELECT Count(*) AS n FROM Tickets" --csv | tail -n 1)
  printf '%s KiB of room: %s tickets, then: %s\n' "$room" "$sold" "$(grep -iE 'full|too large|disk' "$work/out" | head -n 1)"
  day "$work/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the day does not go on"; }
  state "$work/shop" >"$work/found"
  diff "$work/expected" "$work/found" || fail "the shop differs"
done
