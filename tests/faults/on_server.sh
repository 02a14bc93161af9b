# SPDX-License-Identifier: MIT
# What the fault runs on a server share: a private server, and on it a shop that keeps the law's records,
# at which every till is a program with a folder of its own. Ends with 77 where no server is installed.
# Sourced behind nothing else. RANDOM_SEED repeats a run.
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"
line_program=$(realpath "${LINE:-/dev/null}")
source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/lib/common.sh"
source scripts/lib/server.sh

server_programs >/dev/null || { echo "PostgreSQL's server is not installed."; exit 77; }
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"

place=/tmp/tavelor-server-faults-$$
tills=${TILLS:-01,02,03,04,05,06,07,08}
IFS=, read -ra names <<<"$tills"
declare -A running=()  # the program of each till

clean_up() {
  [[ -z ${line:-} ]] || kill "$line" 2>/dev/null || true
  if (( ${#running[@]} > 0 )); then
    kill -9 "${running[@]}" 2>/dev/null || true
    wait "${running[@]}" 2>/dev/null || true
  fi
  local folder
  for folder in "$place" "$place"-*; do [[ ! -d $folder ]] || server_stop "$folder" $$; done
  rm -rf "$work"
}
trap clean_up EXIT

# address HOST...: of the shop, at whichever of these takes writes.
address() {
  local hosts
  hosts=$(IFS=,; echo "$*")
  echo "postgresql://tavelor@${hosts//\//%2F}/shop"
}
socket() { echo "$1:$(cat "$1/port")"; }
# ask STATEMENT [FOLDER]: its value, by the server itself.
ask() { server_sql "${2:-$place}" shop -At -c "$1"; }

# begin_shop COUNT HOST...: the shop, with its office at the server and its tills at the hosts, and
# COUNT sales of three lines for a day.
begin_shop() {
  local count=$1
  shift
  server_sql "$place" postgres -c "CREATE DATABASE shop TEMPLATE template0 ENCODING 'UTF8' LOCALE 'C'"
  "$program" new "$work/office" --server "$(address "$@")" >/dev/null
  "$program" seed "$work/office" >/dev/null
  "$program" fiscal setup "$work/office" --nif 89890001K --name "Colmado Rius" --producer-nif B12345674 \
    --producer "Talleres Norte SL" --installation 1 --mode verifactu --start 2024-10-28 >/dev/null
  {
    echo InvoiceNo,StockCode,Description,Quantity,InvoiceDate,UnitPrice,CustomerID,Payment
    awk -v count="$count" 'BEGIN { for (i = 1; i <= count; ++i) for (line = 1; line <= 3; ++line)
      printf "S%d,A%02d,ARTICLE,%d,2025-11-20 %02d:%02d,%d.%02d,%s,%s\n", i, (i * line) % 30,
        i % 17 == 0 ? -line : line, 9 + i * 10 / (count + 1), i % 60, line, i % 100,
        i % 4 == 0 ? "C" i % 12 : "", i % 4 == 0 && i % 3 == 0 ? "credit" : i % 5 ? "1" : "tarjeta" }'
  } >"$work/sales.csv"
  local till
  for till in "${names[@]}"; do
    "$program" new "$work/till$till" --server "$(address "$@")" >/dev/null
    cp "$work/office/fiscal.xml" "$work/till$till/"
  done
}

# sell TILL: a program that sells the day at a till.
sell() {
  "$program" day "$work/till$1" --sales "$work/sales.csv" --grant-credit --tills "$tills" --only "$1" \
    >"$work/out$1" 2>&1 &
  running[$1]=$!
}

sold() {
  ask 'SELECT (SELECT count(*) FROM documents."Tickets") + (SELECT count(*) FROM documents."HTickets")' "$@" \
    2>/dev/null || echo 0
}
# until_sold COUNT: waits until so many sales are there; fails when the tills have ended before.
until_sold() {
  local found
  while found=$(sold "${2:-$place}") && (( found < $1 )); do
    kill -0 "${running[@]}" 2>/dev/null || break
    sleep 0.02
  done
  (( $(sold "${2:-$place}") >= $1 )) || { cat "$work"/out*; fail "the tills have stopped before $1 sales"; }
}

# acknowledged [FOLDER]: the number and the reference of every ticket that anybody can see.
acknowledged() {
  ask 'SELECT "Numero", "Referencia" FROM documents."Tickets"
    UNION ALL SELECT "Numero", "Referencia" FROM documents."HTickets" ORDER BY 1' "$@"
}

# end_day COUNT [FOLDER]: waits for all tills, and looks whether each of COUNT sales is there once, with
# its record, its stock and the next number. Whatever $work/acknowledged* lists must be there still, by
# the same number.
end_day() {
  local count=$1 server=${2:-$place} till status list
  for till in "${names[@]}"; do
    status=0
    wait "${running[$till]}" || status=$?
    unset "running[$till]"
    (( status == 0 )) || { cat "$work/out$till"; tail -n 5 "$server/log"; fail "till $till has not gone on by itself"; }
    grep -q '^reconciled' "$work/out$till" || { cat "$work/out$till"; fail "till $till does not reconcile"; }
  done
  # Nothing is left to sell, and all that was meant to be sold is there.
  "$program" day "$work/office" --sales "$work/sales.csv" --grant-credit --tills "$tills" >"$work/out" 2>&1 ||
    { cat "$work/out"; fail "the day does not reconcile"; }
  grep -q "^0 sales sold .* $count were there; " "$work/out" || { cat "$work/out"; fail "a sale was missing"; }
  acknowledged "$server" >"$work/all"
  [[ $(wc -l <"$work/all") == "$count" ]] || fail "a sale is there twice"
  [[ $(cut -d '|' -f 2 "$work/all" | sort -u | wc -l) == "$count" ]] || fail "a reference is there twice"
  [[ $(cut -d '|' -f 1 "$work/all" | paste -sd ' ') == "$(seq -s ' ' "$count")" ]] || fail "a number is missing"
  for list in "$work"/acknowledged*; do
    [[ ! -s $list ]] || [[ -z $(comm -23 <(sort "$list") <(sort "$work/all")) ]] ||
      { comm -23 <(sort "$list") <(sort "$work/all"); fail "an acknowledged sale is lost"; }
  done
  "$program" -C "$work/office" fiscal check >"$work/checked" 2>&1 || { cat "$work/checked"; fail "the records are not whole"; }
  grep -q "^$count records, .* $count tickets" "$work/checked" || { cat "$work/checked"; fail "a ticket is without its record"; }
}

# longest_wait: of those that the tills have told, in seconds; 0 where none has met the harm.
longest_wait() { sed -n 's/^going on after \(.*\) s$/\1/p' "$work"/out?* | sort -n | tail -n 1 | grep . || echo 0; }
waits() { cat "$work"/out?* | grep -c "^going on after" || true; }
