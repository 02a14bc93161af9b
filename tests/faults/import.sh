#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# import.sh COUNT: kills an import of customers COUNT times at random moments, each in a new shop, and
# gives the same command again; then imports on a disk that has too little room, and again with
# enough. The customers must be those of an import in peace, each of them whole. The customers are made
# up, and where SALES names a file of sales those of that file. RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"

count=${1:?usage: import.sh COUNT}
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

list=$work/customers.csv
if [[ -n ${SALES:-} ]]; then
  # Rows with a customer end in its number and its country, and no number holds a comma.
  { echo Codigo,Provincia
    xz -dcf "$SALES" | sed -nE 's/.*,([0-9]+)(\.0)?,([^,"]+)\r?$/\1,\3/p' | sort -u -t , -k 1,1; } >"$list"
else
  { echo Codigo,Razon_Social,NIF,Descuento,Riesgo
    awk 'BEGIN { for (i = 1; i <= 12000; ++i)
      printf "%06d,Cliente %d,%08d%s,%d,%d\n", i, i, i, substr("TRWAGMYFPDXBNJZSQVHLCKE", i % 23 + 1, 1), i % 20, i }'
  } >"$list"
fi
customers=$(( $(wc -l <"$list") - 1 ))

import() { "$program" -C "$1" import customers "$list"; }
state() {
  "$program" -C "$1" sql main "SELECT Codigo, Razon_Social, Provincia, NIF, ID_Fiscal, Descuento, Riesgo, Facturar FROM Clientes ORDER BY Codigo" --csv
}

new_shop "$work/empty"
cp -r "$work/empty" "$work/peace"
begin=$(date +%s%N)
import "$work/peace" >"$work/out" || { cat "$work/out"; fail "the import in peace"; }
lasts=$(( ($(date +%s%N) - begin) / 1000 ))  # microseconds
grep -q "^$customers of $customers rows: $customers new" "$work/out" || { cat "$work/out"; fail "not all are new"; }
state "$work/peace" >"$work/expected"

halves=0
for (( killed = 0; killed < count; ++killed )); do
  rm -rf "$work/shop"
  cp -r "$work/empty" "$work/shop"
  "$program" -C "$work/shop" import customers "$list" >"$work/out" 2>&1 &
  pause=$(( (RANDOM * 32768 + RANDOM) % lasts ))
  sleep "$(( pause / 1000000 )).$(printf '%06d' $(( pause % 1000000 )))"
  kill -9 $! 2>/dev/null || true
  wait $! 2>/dev/null || true
  import "$work/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the import does not go on"; }
  if ! grep -q ' 0 as stored' "$work/out"; then halves=$(( halves + 1 )); fi
  state "$work/shop" >"$work/found"
  cmp "$work/expected" "$work/found" || fail "after a kill the customers differ"
done
printf '%d customers, %d kills, %d in the middle\n' "$customers" "$count" "$halves"

disk=$work/disk
mkdir "$disk"
empty=$(du -sk "$work/empty" | cut -f 1)
if mount -t tmpfs -o size=$(( empty + ${ROOM:-400} ))k tavelor "$disk" 2>/dev/null; then
  trap 'umount "$disk" 2>/dev/null || true; rm -rf "$work"' EXIT
  cp -r "$work/empty" "$disk/shop"
  import "$disk/shop" >"$work/out" 2>&1 && fail "the import fits on the disk: give it less ROOM"
  grep -qiE 'full|disk' "$work/out" || { cat "$work/out"; fail "the error does not tell of the disk"; }
  mount -o remount,size=1g "$disk"
  import "$disk/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the import does not go on"; }
  state "$disk/shop" >"$work/found"
  cmp "$work/expected" "$work/found" || fail "after a full disk the customers differ"
  printf 'a full disk, then: %s\n' "$(tail -n 1 "$work/out")"
fi
