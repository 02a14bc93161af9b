#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Three tills of one shop, as if each were a machine of its own, on one PostgreSQL server that dies while
# they sell. The server is a private one in memory and goes with this program; what the tills have in
# their folders stays in build/demo-server, or the FOLDER named, until the next time. Called by
# scripts/demo --server; ends with 1 when a sale is missing or a till has not gone on by itself.
source "$(dirname "$0")/common.sh"
source scripts/lib/server.sh

server_programs >/dev/null || { echo "PostgreSQL's server is not installed."; exit 77; }
program=${TAVELOR:-build/release/tools/tavelor}
folder=${1:-build/demo-server}
place=/tmp/tavelor-server-demo-$$
tills=(01 02 03)
rm -rf "$folder"
mkdir -p "$folder"

tell() { printf '\n# %s\n' "$*"; }
tavelor() {
  printf '$ tavelor %s\n' "$*"
  "$program" "$@" 2>&1 | sed "s|$PWD/||g"
}
# block NAME: the statements of a page, so that what it tells people to do is what is done here.
block() { awk -v fence="\`\`\`sql $1" '$0 == fence { on = 1; next } /^```/ { on = 0 } on' docs/server.md; }
address() { echo "postgresql://$1@${place//\//%2F}:$(cat "$place/port")/shop"; }
sold() { server_sql "$place" shop -At -c 'SELECT count(*) FROM documents."Tickets"' 2>/dev/null || echo 0; }

trap 'server_stop "$place" $$' EXIT
server_start "$place" $$
tell "PostgreSQL $(as_server postgres --version | grep -o '[0-9.]*' | head -n 1), a database, an owner of its tables, and tills that own nothing."
block roles | server_sql "$place" postgres
tavelor new "$folder/office" --server "$(address shop_owner)"
block rights | as_server psql -X -q -v ON_ERROR_STOP=1 -d "$(server_conninfo "$place" shop | sed 's/user=.*/user=shop_owner/')"
tavelor seed "$folder/office" --name "Colmado Rius" --nif 12345678Z
for till in "${tills[@]}"; do
  "$program" new "$folder/till$till" --server "$(address "till$till")" >/dev/null
done

tell "A day at ${#tills[@]} tills at once, each a program with a folder and a role of its own."
declare -A running=()
for till in "${tills[@]}"; do
  "$program" day "$folder/till$till" --tills "$(IFS=,; echo "${tills[*]}")" --only "$till" \
    >"$folder/till$till.txt" 2>&1 &
  running[$till]=$!
done
while (( $(sold) < 60 )) && kill -0 "${running[@]}" 2>/dev/null; do sleep 0.02; done
server_down "$place" immediate
down=$(date +%s%N)
echo "The server is killed; every till is in the middle of a sale."
sleep 1
server_up "$place"
echo "$(sold) tickets were sold until then. It answers again after $(( ($(date +%s%N) - down) / 1000000 )) ms."

status=0
for till in "${tills[@]}"; do
  tell "Till $till"
  wait "${running[$till]}" || status=$?
  sed "s|$PWD/||g" "$folder/till$till.txt" | sed -n '/sold with/p;/^mended/p;/^tavelor/p;$p'
done
[[ $status -eq 0 ]] || { echo "A till has not gone on by itself."; exit 1; }

tell "The same day once more, from the office: there is nothing left to sell, and every sale is there once."
tavelor day "$folder/office" --tills "$(IFS=,; echo "${tills[*]}")" | sed -n '1,2p;/tickets  /,$p'
tell "No number is missing, and all lie in tables that the tills do not own."
server_sql "$place" shop -c 'SELECT min("Numero") AS first, max("Numero") AS last, count(*) AS tickets FROM documents."HTickets"' \
  -c "SELECT tableowner AS owner, count(*) AS tables FROM pg_tables WHERE schemaname NOT LIKE 'pg_%'
      AND schemaname <> 'information_schema' GROUP BY 1"
