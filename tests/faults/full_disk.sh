#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# full_disk.sh: sells a day on a disk that has too little room, then again with enough. The first must
# fail clearly, the second end as if nothing had been. The disk is one in memory where this user may
# mount one; else files may not grow beyond a limit.
source "$(dirname "$0")/common.sh"

new_shop "$work/empty"
cp -r "$work/empty" "$work/peace"
day "$work/peace" >/dev/null || fail "the day in peace does not reconcile"
state "$work/peace" >"$work/expected"

disk=$work/disk
mkdir "$disk"
empty=$(du -sk "$work/empty" | cut -f 1)
largest=$(( $(stat -c %s "$work"/empty/*.db | sort -n | tail -n 1) / 1024 ))
trap 'umount "$disk" 2>/dev/null || true; rm -rf "$work"' EXIT

# tight ROOM: the day, with so many KiB beyond what an empty shop takes.
tight() {
  if mount -t tmpfs -o size=$(( empty + $1 ))k tavelor "$disk" 2>/dev/null; then
    how='a full disk'
    cp -r "$work/empty" "$disk/shop"
    day "$disk/shop"
  else
    how='a limit for files'
    cp -r "$work/empty" "$disk/shop"
    (
      trap '' XFSZ  # the write fails instead
      ulimit -f $(( largest + $1 ))
      day "$disk/shop"
    )
  fi
}

for room in ${ROOMS:-300 500 800}; do
  tight "$room" >"$work/out" 2>&1 && fail "with $room KiB of room the day went through"
  grep -qiE 'full|disk' "$work/out" || { cat "$work/out"; fail "the error does not tell of the disk"; }
  mount -o remount,size=1g "$disk" 2>/dev/null || true
  sold=$("$program" -C "$disk/shop" sql documents "SELECT Count(*) AS n FROM Tickets" --csv | number)
  printf '%s, %s KiB of room: %s tickets, then: %s\n' "$how" "$room" "$sold" \
    "$(grep -iE 'full|disk' "$work/out" | head -n 1 | sed "s|$work/||g")"
  day "$disk/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the day does not go on"; }
  state "$disk/shop" >"$work/found"
  diff "$work/expected" "$work/found" || fail "the shop differs"
  umount "$disk" 2>/dev/null || rm -rf "$disk/shop"
done
