#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# import.sh COUNT [customers|suppliers|deliveries|database]: kills an import COUNT times at random moments, each
# in a new shop, and gives the same command again; then imports on a disk that has too little room, and
# again with enough. What is stored must be that of an import in peace, each row or delivery of it
# whole, and of an old database all or none. The rows are made up; where SALES names a file of sales, customers are those of that file.
# RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"

count=${1:?usage: import.sh COUNT [customers|suppliers|deliveries|database]}
kind=${2:-customers}
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

list=$work/list.csv
new_shop "$work/empty"
sql() { "$program" -C "$1" sql main "$2" --csv; }

# Of each kind: the rows, the command, what is stored, and what a whole import says.
partners() {
  printf 'Codigo,Razon_Social,NIF,Descuento%s\n' "$1"
  awk -v last="$1" 'BEGIN { for (i = 1; i <= 12000; ++i)
    printf "%06d,Número %d,%08d%s,%d%s\n", i, i, i, substr("TRWAGMYFPDXBNJZSQVHLCKE", i % 23 + 1, 1), i % 20,
      last == "" ? "" : "," i }'
}
case $kind in
  customers)
    if [[ -n ${SALES:-} ]]; then
      # Rows with a customer end in its number and its country, and no number holds a comma.
      { echo Codigo,Provincia
        xz -dcf "$SALES" | sed -nE 's/.*,([0-9]+)(\.0)?,([^,"]+)\r?$/\1,\3/p' | sort -u -t , -k 1,1; } >"$list"
    else
      partners ,Riesgo >"$list"
    fi
    state() { sql "$1" "SELECT Codigo, Razon_Social, Provincia, NIF, ID_Fiscal, Descuento, Riesgo, Facturar FROM Clientes ORDER BY Codigo"; }
    ;;
  suppliers)
    partners "" >"$list"
    state() { sql "$1" "SELECT Codigo, Razon_Social, NIF, Descuento, Tarifa, Cta_Contable, Activo FROM Proveedores ORDER BY Codigo"; }
    ;;
  deliveries)
    { echo Codigo,Descripcion,Actualizar_Stock,Lotes
      awk 'BEGIN { for (i = 0; i < 40; ++i) printf "A%02d,Artículo %d,1,%d\n", i, i, i % 2 }'; } >"$work/articles.csv"
    { echo Codigo,Razon_Social; seq -f '%g,Proveedor' 400 419; } >"$work/suppliers.csv"
    "$program" -C "$work/empty" import articles "$work/articles.csv" >/dev/null
    "$program" -C "$work/empty" import suppliers "$work/suppliers.csv" >/dev/null
    { echo Proveedor,Albaran,Fecha,Codigo,Cantidad,Precio,Lote
      awk 'BEGIN { for (i = 1; i <= 400; ++i) for (line = 1; line <= 10; ++line) { article = (i * line) % 40
        printf "%d,A-%d,2025-11-%02d,A%02d,%d,%d,%s\n", 400 + i % 20, i, i % 28 + 1, article, line, i % 9 + 1,
          article % 2 ? "L" article "-" i % 5 : "" } }'; } >"$list"
    # Whatever two of these places say of the same goods must agree.
    state() {
      sql "$1" "SELECT Codigo, Existencia, Precio_Coste, Round(Precio_Medio, 4) AS m FROM Articulos ORDER BY Codigo"
      sql "$1" "SELECT Codigo, Almacen, Cantidad FROM Articulos_Almacenes ORDER BY Codigo, Almacen"
      sql "$1" "SELECT Codigo, Lote, Existencia, Activo, Stock FROM Articulos_Lotes ORDER BY Codigo, Lote"
      sql "$1" "SELECT Id, Fecha, Codigo, Lote, Cantidad, Precio, Referencia, Movimiento, Doc_E, Cod_ID FROM Articulos_Movimientos_Almacen ORDER BY Id"
      sql "$1" "SELECT Codigo, Proveedor, Precio FROM Articulos_Precios_Compras ORDER BY Codigo, Proveedor"
      sql "$1" "SELECT Id, Codigo, Fecha, Concepto, Haber, Saldo, Documento_E FROM Proveedores_Apuntes_Contables ORDER BY Id"
      "$program" -C "$1" account --check --supplier
      "$program" recover "$1"
      local article
      for article in A07 A16; do "$program" -C "$1" stock "$article" --check; done
    }
    ;;
  database)
    "$(dirname "$0")/../support/make_mdb.py" "$list" --repeat 6000 'Articulos(Codigo text(20), Descripcion text(255), Tarifa_A money)' \
      'A#|Artículo #|#.25' 'Articulos_Comentarios(Id long, Codigo text(20), Comentarios memo)' '#|A#|*40:ñandú ' \
      'Articulos_Tarifas(Codigo text(20), Tarifa text(10), Precio money)' 'A#|D|1.5'
    state() {
      sql "$1" "SELECT Codigo, Descripcion, Tarifa_A FROM Articulos ORDER BY Codigo"
      sql "$1" "SELECT Id, Codigo, Comentarios FROM Articulos_Comentarios ORDER BY Id"
      sql "$1" "SELECT Codigo, Tarifa, Precio FROM Articulos_Tarifas ORDER BY Codigo"
    }
    ;;
  *) fail "no such kind: $kind" ;;
esac
command=(import "$kind" "$list")
rows=$(( $(wc -l <"$list") - 1 ))
all="^$rows of $rows rows: $rows new"
nothing_before=' 0 as stored'
if [[ $kind == deliveries ]]; then
  command=(receive "$list")
  all='^400 of 400 deliveries: 400 received'
  nothing_before=' 0 were there'
fi
if [[ $kind == database ]]; then
  rows=18000
  all='^Articulos_Tarifas  *6000  *6000 '
  nothing_before='^Articulos  *6000  *6000 '
fi
import() { "$program" -C "$1" "${command[@]}"; }

cp -r "$work/empty" "$work/peace"
begin=$(date +%s%N)
import "$work/peace" >"$work/out" || { cat "$work/out"; fail "the import in peace"; }
lasts=$(( ($(date +%s%N) - begin) / 1000 ))  # microseconds
grep -q "$all" "$work/out" || { cat "$work/out"; fail "not all are new"; }
state "$work/peace" >"$work/expected"

halves=0
for (( killed = 0; killed < count; ++killed )); do
  rm -rf "$work/shop"
  cp -r "$work/empty" "$work/shop"
  "$program" -C "$work/shop" "${command[@]}" >"$work/out" 2>&1 &
  pause=$(( (RANDOM * 32768 + RANDOM) % lasts ))
  sleep "$(( pause / 1000000 )).$(printf '%06d' $(( pause % 1000000 )))"
  kill -9 $! 2>/dev/null || true
  wait $! 2>/dev/null || true
  if [[ $kind == database ]]; then
    stored=$(sql "$work/shop" "SELECT Count(*) AS n FROM Articulos" | tr -dc 0-9)
    [[ $stored == 0 || $stored == 6000 ]] || fail "a killed import has left $stored articles"
  fi
  import "$work/shop" >"$work/out" 2>&1 || { cat "$work/out"; fail "the import does not go on"; }
  if ! grep -q "$nothing_before" "$work/out"; then halves=$(( halves + 1 )); fi
  state "$work/shop" >"$work/found"
  cmp "$work/expected" "$work/found" || fail "after a kill the $kind differ"
done
printf '%d rows of %s, %d kills, %d in the middle\n' "$rows" "$kind" "$count" "$halves"

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
  cmp "$work/expected" "$work/found" || fail "after a full disk the $kind differ"
  printf 'a full disk, then: %s\n' "$(tail -n 1 "$work/out")"
fi
