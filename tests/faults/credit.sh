#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# credit.sh COUNT: the runs of kill.sh, lost.sh and tills.sh over sales of customers, a third of them
# on credit and some of them returns: what is owed must be what it would have been in peace.
source "$(dirname "$0")/common.sh"

count=${1:?usage: credit.sh COUNT}
{
  echo InvoiceNo,StockCode,Description,Quantity,InvoiceDate,UnitPrice,CustomerID,Payment
  awk 'BEGIN { for (i = 1; i <= 240; ++i) for (line = 1; line <= 3; ++line)
    printf "%d,A%02d,ARTICLE,%d,2010-12-%02d %02d:%02d,%d.%02d,%s,%s\n", i, (i * line) % 30,
      i % 7 == 0 ? -line : line, i / 120 + 1, 9 + i % 120 / 12, i % 12 * 5, line, i % 100,
      i % 4 == 0 ? "" : "C" i % 12, i % 4 == 0 ? "" : i % 3 == 0 ? "credit" : "tarjeta" }'
} >"$work/sales.csv"
export SALES=$work/sales.csv

here=$(dirname "$0")
"$here/kill.sh" "$count"
"$here/lost.sh" "$count"
WRITERS= "$here/tills.sh" 1 4
