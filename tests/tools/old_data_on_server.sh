#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# old_data_on_server.sh PROGRAM: an old database comes onto a server as into files: values to the last
# digit, rows that a unique index refuses by themselves, all of it or nothing, and counters go on behind.
# Ends with 77 where no server is installed.
set -euo pipefail
program=$(realpath "$1")
source "$(dirname "$0")/../../scripts/lib/common.sh"
source scripts/lib/server.sh

server_programs >/dev/null || { echo "PostgreSQL's server is not installed."; exit 77; }
place=/tmp/tavelor-server-old-$$
work=$(mktemp -d)
trap 'server_stop "$place" $$; rm -rf "$work"' EXIT
server_start "$place" $$ >/dev/null
server_sql "$place" postgres -c "CREATE DATABASE shop TEMPLATE template0 ENCODING 'UTF8' LOCALE 'C'"
ask() { server_sql "$place" shop -At -c "$1"; }
is() { [[ $2 == "$3" ]] || { printf '%s: %s, and not %s\n' "$1" "$2" "$3"; exit 1; }; }
"$program" new "$work/shop" --server "postgresql://tavelor@${place//\//%2F}:$(cat "$place/port")/shop" >/dev/null

make_mdb=$PWD/tests/support/make_mdb.py
"$make_mdb" "$work/old.mdb" \
  'Articulos(Codigo text(20), Descripcion text(255), Tarifa_A money, Existencia double, Fecha date, Activo flag)' \
  'A1|Pan ñ|922337203685477.5807|0.30000000000000004|46000.5|1' 'A2|~|-0.5|-2|~|0' \
  'Tickets(Numero double)' 7 'Tickets_Lineas(Numero double, Codigo text(50))' '7|A1' '7|A1' \
  'Rutas(Id long, Codigo long)' '50|1' '60|1' '70|2' \
  'Tipos_Documento(Codigo text(10), Descripcion text(50), Logotipo ole)' 'T1|Factura|*9000:x' 'T2|*51:y|~'
import() { "$program" -C "$work/shop" import database "$work/old.mdb" "$@" 2>&1 | grep -E '^[A-Z][A-Za-z_]+ +[0-9]' | tr -s ' ' || true; }

import --dry-run >/dev/null
is 'after a dry run' "$(ask 'SELECT count(*) FROM main."Articulos"')" 0
is 'the import' "$(import)" $'Articulos 2 2 0 0 0 0\nTickets 1 1 0 0 0 0\nTickets_Lineas 2 2 0 0 0 0\nRutas 3 2 0 0 0 1\nTipos_Documento 2 1 0 0 0 1'
is 'values' "$(ask 'SELECT "Tarifa_A", "Existencia", to_char("Fecha", '"'YYYY-MM-DD HH24:MI:SS'"'), "Activo", "Descripcion" FROM main."Articulos" WHERE "Codigo" = '"'A1'")" \
  '922337203685477.5807|0.30000000000000004|2025-12-09 12:00:00|-1|Pan ñ'
is 'again' "$(import)" $'Articulos 2 0 0 2 0 0\nTickets 1 0 0 1 0 0\nTickets_Lineas 2 0 0 2 0 0\nRutas 3 0 0 2 0 1\nTipos_Documento 2 0 0 1 0 1'
"$program" -C "$work/shop" sql main "INSERT INTO Rutas (Codigo) VALUES (19)" >/dev/null
is 'the counter' "$(ask 'SELECT max("Id") FROM main."Rutas"')" 71
is 'pictures' "$(ask 'SELECT length("Logotipo") FROM main."Tipos_Documento"')" 9000

# All or nothing: the table that comes last is damaged.
"$make_mdb" "$work/old.mdb" --rows Bancos=9 'Articulos(Codigo text(20))' N1 'Tickets(Numero double)' 8 'Bancos(Codigo text(10))' B1
import >/dev/null
is 'after damage' "$(ask 'SELECT (SELECT count(*) FROM main."Articulos") + (SELECT count(*) FROM documents."Tickets")')" 3
echo "the same as in files"
