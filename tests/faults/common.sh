# SPDX-License-Identifier: MIT
# What the fault runs share. A fault run does harm to a day's sales and asks whether, after the same
# command has been given again, the shop is what it would have been without the harm.
set -euo pipefail

program=$(realpath "${TAVELOR:?set TAVELOR to the tavelor command}")
# Sales to replay: none for the built-in day.
sales=(${SALES:+--sales "$(realpath "$SALES")"} ${SALES_DAYS:+--to "$SALES_DAYS"})
work=$(mktemp -d "${TMPDIR:-/tmp}/tavelor-faults-XXXXXX")
trap 'rm -rf "$work"' EXIT

fail() {
  printf 'FAILED: %s\n' "$*" >&2
  exit 1
}

# new_shop FOLDER: an installation with its catalogues.
new_shop() {
  "$program" new "$1" >/dev/null
  "$program" seed "$1" >/dev/null
}

# day FOLDER ARGUMENT...: the day's sales and closings, compared with what was meant to be sold.
day() {
  local folder=$1
  shift
  "$program" day "$folder" "${sales[@]}" --tills "$tills" "$@"
}

# number: the value of a statement with one.
number() { tail -n 1 | tr -d '\r'; }

# state FOLDER: what a shop comes to, whatever the order in which its tickets were numbered: sums are
# rounded, as theirs depends on it in the last bits.
state() {
  local folder=$1 query
  while IFS=: read -r database query; do
    printf '%s: ' "$query"
    "$program" -C "$folder" sql "$database" "$query" --csv | tail -n +2 | tr '\r\n' '  '
    printf '\n'
  done <<'END'
documents:SELECT Count(*) AS n, Round(Sum(Total), 4) AS t, Min(Numero) AS a, Max(Numero) AS b FROM HTickets
documents:SELECT Count(*) AS n FROM Tickets
documents:SELECT Count(*) AS n, Round(Sum(Cantidad), 4) AS c, Round(Sum(Importe), 4) AS i FROM HTickets_Lineas
documents:SELECT Count(*) AS n, Round(Sum(Base), 4) AS b, Round(Sum(Importe), 4) AS i FROM HTickets_Lineas_Impuestos
documents:SELECT Count(*) AS n FROM HTickets_Cabecera
documents:SELECT Count(*) AS n FROM HTickets_Comentarios
main:SELECT Caja, Fecha, Base, Total, Saldo_Inicio, Saldo_Final FROM Cierres ORDER BY Caja, Fecha
main:SELECT Movimiento, Count(*) AS n, Round(Sum(Cantidad), 4) AS c FROM Articulos_Movimientos_Almacen GROUP BY Movimiento
main:SELECT Count(*) AS n, Round(Sum(Existencia), 4) AS e FROM Articulos
main:SELECT Count(*) AS n, Round(Sum(Cantidad), 4) AS c FROM Articulos_Almacenes
main:SELECT Codigo, Razon_Social FROM Clientes ORDER BY Codigo
main:SELECT Codigo, Count(*) AS n, Round(Sum(Debe), 4) AS d, Round(Sum(Haber), 4) AS h FROM Clientes_Apuntes_Contables GROUP BY Codigo ORDER BY Codigo
main:SELECT Ticket_a FROM Numeradores
END
  "$program" -C "$folder" account --check
}

tills=${TILLS:-01,02,03}
