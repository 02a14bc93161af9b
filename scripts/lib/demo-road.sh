#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job, a shop's day, in a shop that stays in build/demo until the next time: goods come in,
# are sold, the tills are closed. Called by scripts/demo once the command is built.
source "$(dirname "$0")/common.sh"

program=${TAVELOR:-build/release/tools/tavelor}
folder=build/demo
rm -rf "$folder"
mkdir -p "$folder"
export TAVELOR_HOME=$folder/shop

tell() { printf '\n# %s\n' "$*"; }
# tavelor ARGUMENTS...: shows the command as it would be typed, then runs it.
tavelor() {
  printf '$ tavelor'
  local argument
  for argument in "$@"; do
    if [[ $argument =~ ^[[:alnum:]_.,/=-]+$ ]]; then
      printf ' %s' "$argument"
    else
      printf ' "%s"' "$argument"
    fi
  done
  printf '\n'
  "$program" "$@" 2>&1 | sed "s|$PWD/||g"
}

tell "An installation is one folder, with what a shop needs on its first day."
tavelor new "$TAVELOR_HOME"
tavelor seed "$TAVELOR_HOME" --name "Colmado Rius" --nif 12345678Z

tell "Sales leave the records that the law wants. Who sells and who made the program are examples here."
tavelor fiscal setup "$TAVELOR_HOME" --nif 12345678Z --name "EJEMPLO, Colmado Rius" --producer-nif B12345674 \
  --producer "EJEMPLO, Productora SL" --installation 1 --mode verifactu --host test --start 2026-11-01

tell "Articles and suppliers from files, and goods from them: stock, lots, costs, and what is owed."
cat >"$folder/articles.csv" <<'END'
Codigo,Descripcion,Familia,Tarifa_A,Impuesto,Actualizar_Stock,Lotes
PAN001,Barra de pan,Panadería,"0,95",3,1,0
PAN002,Pan de pueblo 500 g,Panadería,"1,85",3,1,0
BEB001,"Agua mineral 1,5 l",Bebidas,"0,65",2,1,0
CON001,Conserva de atún,Despensa,"4,50",2,1,1
END
cat >"$folder/suppliers.csv" <<'END'
Codigo,Razon_Social,NIF,Forma_Pago
400,Forn L'Espiga SL,b-12345674,transferencia
401,Conserves del Nord SA,A12345674,crédito
END
cat >"$folder/deliveries.csv" <<'END'
Proveedor,Albaran,Fecha,Codigo,Cantidad,Precio,Descuento,Lote,Caduca
400,A-1107,2025-11-19,PAN001,300,"0,42",,,
400,A-1107,2025-11-19,PAN002,60,"0,90",10,,
401,88/25,2025-11-19,BEB001,120,"0,21",,,
401,88/25,2025-11-19,CON001,48,"2,35",,L5523,2028-05-31
401,89/25,2025-11-19,BEB001,0,"0,21",,,
END
tavelor import articles "$folder/articles.csv"
tavelor import suppliers "$folder/suppliers.csv"
tavelor receive "$folder/deliveries.csv" || true
tavelor receive "$folder/deliveries.csv" | sed -n '1p;/deliveries:/p' || true
tavelor account 401 --supplier

tell "A day at three tills: every sale moves its stock, every till is closed, nothing is missing."
tavelor day "$TAVELOR_HOME"

tell "The same day again sells nothing twice."
tavelor day "$TAVELOR_HOME" | sed -n '1,2p;$p'

tell "A ticket as its receipt, from history, and the four places that hold the stock of an article."
tavelor ticket 17
tavelor ticket 17 --page "$folder/ticket-17.html" --paper 80
tavelor ticket 17 --escpos "$folder/ticket-17.bin" --paper 80
tavelor stock PAN001

tell "Customers from a file: numbers are cleaned and classed, what is not right is told."
cat >"$folder/customers.csv" <<'END'
Codigo,Razon_Social,NIF,Tarifa,Descuento
0012,Obras del Sur SL,b-12345674,A,10
0013,Núria O'Hara,nif: 12.345.678-z,A,0
0014,Bar Central,12345678A,A,0
END
tavelor import customers "$folder/customers.csv"

tell "Without a price in the file they buy at their own; what is on credit they owe, in their accounts."
cat >"$folder/credit.csv" <<'END'
InvoiceNo,StockCode,Quantity,InvoiceDate,CustomerID,Payment
K1,PAN001,6,2025-11-20 08:30,0012,credit
K1,BEB001,2,2025-11-20 08:30,0012,credit
K2,PAN001,4,2025-11-20 08:45,0013,credit
K3,BEB001,-1,2025-11-20 09:00,0012,credit
END
tavelor day "$TAVELOR_HOME" --sales "$folder/credit.csv" --tills 04 | sed -n '1,2p;/tickets  /,$p'
tavelor call ClsClientesApuntesConta Insertar A 0012 25/11/2025 Transferencia H 0 5 2 1
tavelor account 0012
tavelor account --check

tell "The agenda of a day, with what shares a box."
for appointment in '9:00 0012 "Obras del Sur" Presupuesto 001 "Marta Gil" 2' \
  '9:00 0013 "Núria" "" 002 "Joan Ros" 2' '17:30 0014 "Bar Central" Entrega 001 "Marta Gil" 1'; do
  eval "tavelor call ClsCitas Insertar 21/11/2025 $appointment Visita" >/dev/null
done
tavelor agenda 2025-11-21

tell "Any class, any member, by name. A value can break its statement, and do nothing else."
tavelor call ClsCierres SaldoAnterior "20/11/2026" 01 "" "" 0
tavelor call ClsTickets CodigoLibre 17
tavelor call ClsBancos GetWeb "' OR '1'='1" || true

tell "What ran, as the classes joined it."
tavelor browse ClsCierres --columns Código,Caja,Total,Saldo --trace

tell "Each ticket has its record, and each record the one before it: nothing was changed, and nothing is missing."
tavelor fiscal check

tell "The till and the office in a browser: employee 1 signs in with 1234."
tavelor edit ClsEmpleados --add "Nombre=Marta Gil" Activo=Verdadero >/dev/null
printf '1234\n' | tavelor pin 1 --role owner
say "Open the shop: $program serve $TAVELOR_HOME, then http://127.0.0.1:8080/till"
