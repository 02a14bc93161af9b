#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# damaged_databases.sh PROGRAM COUNT: harms database files COUNT times at random and imports each. The
# command must end by itself and soon, with exit code 0 or 1, and say what is wrong with the file where
# it takes nothing; the shop must be as it was. RANDOM_SEED repeats a run.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
count=$2
seed=${RANDOM_SEED:-$$}
printf 'seed %s\n' "$seed"
make_mdb=$(dirname "$(realpath "$0")")/../support/make_mdb.py
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
"$program" new shop >/dev/null

for form in --compressed --jet3; do
  "$make_mdb" "whole$form.mdb" $form --repeat 40 \
    'Bancos(Codigo text(10), Banco text(100), E_Mail text(100), Predeterminada flag)' 'B#|Banco ñ #|~|1' \
    'Articulos(Codigo text(20), Descripcion text(255), Tarifa_A money, Existencia double, Fecha date)' \
    'A#|Artículo #|#.25|#.5|46000' \
    'Articulos_Tarifas(Codigo text(20), Tarifa text(10), Precio decimal(18.4))' 'A#|D|1.5' \
    'Articulos_Comentarios(Id long, Codigo text(20), Comentarios memo)' '#|A#|*900:ñandú ' \
    'Tipos_Documento(Codigo text(10), Logotipo ole)' 'T#|*9000:x' \
    'Articulos_Tarifas.Codigo -> Articulos.Codigo'
done

cat >harm.py <<'P'
import random, sys
seed, source, target = int(sys.argv[1]), sys.argv[2], sys.argv[3]
dice = random.Random(seed)
data = bytearray(open(source, 'rb').read())
page = 2048 if 'jet3' in source else 4096
pages = len(data) // page
how = dice.randrange(6)
if how == 0:  # bytes anywhere, but for the head that says what it is
    for _ in range(dice.randrange(1, 400)):
        data[dice.randrange(0x98, len(data))] = dice.randrange(256)
elif how == 1:  # bytes where definitions and heads of pages lie
    for _ in range(dice.randrange(1, 60)):
        at = dice.randrange(1, pages) * page + dice.randrange(80)
        data[at] = dice.choice([0, 0xff, 0x7f, 0x80, dice.randrange(256)])
elif how == 2:  # a page of noise
    at = dice.randrange(1, pages) * page
    data[at:at + page] = dice.randbytes(page)
elif how == 3:  # a page that was never written
    at = dice.randrange(1, pages) * page
    data[at:at + page] = bytes(page)
elif how == 4:  # two pages in each other's places
    a, b = (dice.randrange(1, pages) * page for _ in range(2))
    data[a:a + page], data[b:b + page] = data[b:b + page], data[a:a + page]
else:  # cut off
    del data[dice.randrange(page * pages):]
open(target, 'wb').write(data)
P

told=0
for ((run = 1; run <= count; run++)); do
  form=--compressed
  [[ $((run % 2)) -eq 0 ]] || form=--jet3
  python3 harm.py $((seed * 100000 + run)) "whole$form.mdb" damaged.mdb
  code=0
  timeout 100 "$program" -C shop import database damaged.mdb --dry-run >out.txt 2>err.txt || code=$?
  fault=
  [[ $code -eq 0 || $code -eq 1 ]] || fault="exit code $code"
  if [[ $code -eq 1 ]]; then
    sed -E 's/[0-9]+/N/g; s/table [A-Za-z_]+/table T/' err.txt | grep ^tavelor >>kinds.txt || true
    told=$((told + 1))
    grep -qE '^tavelor: (damaged\.mdb: |[0-9]+ rows were refused)' err.txt || fault='an error that names no file'
  fi
  if [[ -n $fault ]]; then
    printf 'damage %s: %s\n' "$run" "$fault"
    cat err.txt
    exit 1
  fi
done
for table in Bancos Articulos Articulos_Tarifas Articulos_Comentarios; do
  [[ $("$program" -C shop sql main "SELECT Count(*) AS n FROM $table" --csv | tr -dc 0-9) == 0 ]]
done
sort kinds.txt | uniq -c | sort -rn
printf '%s files, %s told\n' "$count" "$told"

# A fault that ends the process which reads is an error of the command, and leaves nothing.
"$make_mdb" long.mdb --repeat 60000 'Articulos(Codigo text(20), Descripcion text(255))' 'A#|Artículo #'
"$program" -C shop import database long.mdb >out.txt 2>err.txt &
command=$!
until reader=$(tr -d ' ' <"/proc/$command/task/$command/children") && [[ -n $reader ]]; do sleep 0.002; done
kill -ABRT "$reader" # a sanitizer would take SEGV for its own
code=0
wait "$command" || code=$?
[[ $code -eq 1 ]] && grep -q '^tavelor: long.mdb: .*ended by a fault' err.txt || { cat err.txt; exit 1; }
[[ $("$program" -C shop sql main "SELECT Count(*) AS n FROM Articulos" --csv | tr -dc 0-9) == 0 ]]
