#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# receipts.sh PROGRAM [FOLDER]: receipts on each paper as a browser shows them on a printer's 203 dots
# an inch, and what a ticket printer gets, read back with zbarimg: the code holds the address that the
# text receipt tells. FOLDER keeps pages and pictures; else they go.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
for tool in chromium zbarimg python3; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed: skipped"; exit 77; }
done
scratch=$(realpath "$(mktemp -d)")
trap 'rm -rf "$scratch"' EXIT
kept=${2:-$scratch/receipts}
mkdir -p "$kept"
kept=$(realpath "$kept")
failed=0
as_user=()
[[ $(id -u) -ne 0 ]] || as_user=(--no-sandbox) # which the browser refuses to root

# setup SHOP MODE OPTION...: a shop whose sales of this century are recorded.
setup() {
  local shop=$scratch/$1 mode=$2
  shift 2
  "$program" new "$shop" >/dev/null
  "$program" seed "$shop" --name "Colmado Rius" --nif 89890001K >/dev/null
  "$program" fiscal setup "$shop" --nif 89890001K --name "Núria Rius Pla" --producer-nif B12345674 \
    --producer "Talleres Norte SL" --installation 1 --mode "$mode" --start 2024-10-28 "$@" >/dev/null
}

# told IMAGE: what the code in a picture holds. It complains where there is no bus, and goes on.
told() { zbarimg --quiet --raw -Sdisable -Sqrcode.enable "$1" 2>/dev/null; }

# expect NAME PICTURE ADDRESS
expect() {
  local read
  read=$(told "$2") || read="nothing"
  if [[ $read == "$3" ]]; then
    echo "$1: $read"
  else
    echo "$1: the code reads $read, and not $3"
    failed=1
  fi
}

# picture PAGE.html PICTURE.png MILLIMETRES HEIGHT: at 203 dots an inch, of which a browser's own are 96.
picture() {
  local width=$(($3 * 96 * 10 / 254 + 1))
  HOME=$scratch timeout 120 chromium --headless "${as_user[@]}" --disable-gpu --disable-dev-shm-usage \
    --hide-scrollbars --no-first-run --user-data-dir="$scratch/browser" \
    --force-device-scale-factor=2.1145833 --window-size="$width,$4" --screenshot="$2" "file://$1" \
    >"$scratch/browser.log" 2>&1 || { cat "$scratch/browser.log"; exit 1; }
}

# image BYTES PICTURE.pbm: the first raster image among a ticket printer's orders.
image() {
  python3 - "$1" "$2" <<'PYTHON'
import re, sys
orders = open(sys.argv[1], "rb").read()
begin = re.search(rb"\x1dv0\x00(..)(..)", orders, re.S)
columns, rows = (int.from_bytes(part, "little") for part in begin.groups())
dots = orders[begin.end():begin.end() + columns * rows]
assert len(dots) == columns * rows
open(sys.argv[2], "wb").write(b"P4 %d %d\n" % (8 * columns, rows) + dots)
PYTHON
}

# look SHOP TICKET NAME: on each paper.
look() {
  local shop=$scratch/$1 ticket=$2 name=$3 address paper
  address=$("$program" --in "$shop" ticket "$ticket" | sed -n 2p)
  for paper in "58 58 1100" "80 80 1100" "A4 210 1123"; do
    read -r paper width height <<<"$paper"
    "$program" --in "$shop" ticket "$ticket" --page "$kept/$name-$paper.html" --paper "$paper" >/dev/null
    picture "$kept/$name-$paper.html" "$kept/$name-$paper.png" "$width" "$height"
    expect "$name on $paper" "$kept/$name-$paper.png" "$address"
    [[ $paper != A4 ]] || continue
    "$program" --in "$shop" ticket "$ticket" --escpos "$kept/$name-$paper.bin" --paper "$paper" >/dev/null
    image "$kept/$name-$paper.bin" "$kept/$name-$paper.pbm"
    expect "$name, printed on $paper" "$kept/$name-$paper.pbm" "$address"
  done
}

setup sending verifactu
"$program" day "$scratch/sending" --tills 01 >/dev/null
"$program" --in "$scratch/sending" fiscal invoice 17 18 --name "Ñandú SA" --nif A58818501 >/dev/null
setup staying no-verifactu --host test --series-tickets "TIENDA,CAJA;01+2026."
"$program" day "$scratch/staying" --tills 01 >/dev/null

look sending 17 ticket
look sending F/1 invoice
look staying 3 long
exit $failed
