#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The small day of 070-a-day.cpp by the command: a shop opens, sells, takes back, closes and reconciles.
set -euo pipefail

tavelor new shop >/dev/null
tavelor seed shop --name "Colmado Rius" --nif 12345678Z >/dev/null
cat >sales.csv <<'END'
InvoiceNo,StockCode,Description,Family,Quantity,InvoiceDate,UnitPrice,Tax,Payment,Delivered,Till
V0001,PAN,Barra,PAN,3,2025-11-20 10:32,1.10,4,1,10,01
V0001,CAFE,Café molido,DES,1,2025-11-20 10:32,2.75,10,1,10,01
D0001,PAN,Barra,PAN,-1,2025-11-20 10:32,1.10,4,1,,01
END
tavelor day shop --sales sales.csv --tills 01 >day.txt

tavelor -C shop ticket 1
echo
cat shop/rpt/Cierre_000001.txt
echo
# It ends with an error where something differs.
awk '$1 == "history" { sub(",", "", $5); print "history: " $2 " tickets, " $3 " lines, " $5 " cents" }' day.txt
