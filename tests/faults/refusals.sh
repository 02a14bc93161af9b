#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# refusals.sh: what a server says no to, from a wrong password to a full disk. The command must end with 1
# and say what, where and what to do, and no message may show the password. What can be mended is, and the
# same command goes on.
TILLS=${TILLS:-01,02}
source "$(dirname "$0")/on_server.sh"

password='open sesame'
export PGPASSWORD=$password
# refused WORDS COMMAND...: WORDS are patterns that the message must have, one a line.
refused() {
  local words=$1 status=0 word
  shift
  "$program" "$@" >"$work/refused" 2>&1 || status=$?
  [[ $status == 1 ]] || { cat "$work/refused"; fail "not refused ($status): $*"; }
  if grep -qF "$password" "$work/refused"; then fail "the password is shown: $*"; fi
  while IFS= read -r word; do
    grep -qE -- "$word" "$work/refused" || { cat "$work/refused"; fail "\"$word\" is not told: $*"; }
  done <<<"$words"
}
# reload SETTING...: changes settings of the running server.
reload() {
  local setting
  for setting in "$@"; do server_sql "$place" postgres -c "ALTER SYSTEM SET $setting"; done
  server_sql "$place" postgres -At -c 'SELECT pg_reload_conf()' >/dev/null
}
uri() { echo "postgresql://$1@127.0.0.1:$port/$2"; }

server_start "$place" $$ --tcp 'log_statement = all'
port=$(cat "$place/port")
begin_shop 60 "$(socket "$place")"
server_sql "$place" shop -c "CREATE ROLE clerk LOGIN PASSWORD 'of all people'" \
  -c 'GRANT USAGE ON SCHEMA main, documents, historic, import, further, registry TO clerk' \
  -c 'GRANT SELECT, INSERT, UPDATE, DELETE ON ALL TABLES IN SCHEMA main, documents, historic, import, further, registry TO clerk' \
  -c 'REVOKE INSERT ON documents."Tickets_Lineas" FROM clerk'

refused $'password authentication failed for user "clerk"\n127.0.0.1:'"$port"$'\nPGPASSWORD, then in the password file' \
  new "$work/new" --server "$(uri clerk shop)"
PGPASSWORD='' refused $'wants a password\nPGPASSWORD' new "$work/new" --server "$(uri clerk shop)"
refused $'no.such.host.invalid\nDatabase: The database shop on a server can.t be opened' \
  new "$work/new" --server postgresql://clerk@no.such.host.invalid/shop
refused $'127.0.0.1:1:.*refused\n127.0.0.1:2:' new "$work/new" --server postgresql://clerk@127.0.0.1:1,127.0.0.1:2/shop

export PGPASSWORD='of all people'
password=$PGPASSWORD
# TLS of a server that has none; then with a certificate for another name, and of another authority.
refused $'SSL\nrequired' new "$work/new" --server "$(uri clerk shop)?sslmode=require"
for authority in shop other; do
  openssl req -new -x509 -days 2 -nodes -newkey rsa:2048 -subj "/CN=$authority CA" -keyout "$work/$authority-ca.key" \
    -out "$work/$authority-ca.crt" 2>/dev/null
done
openssl req -new -nodes -newkey rsa:2048 -subj '/CN=db1' -addext 'subjectAltName=DNS:db1' -keyout "$work/server.key" \
  -out "$work/server.csr" 2>/dev/null
openssl x509 -req -in "$work/server.csr" -days 2 -CA "$work/shop-ca.crt" -CAkey "$work/shop-ca.key" -CAcreateserial \
  -copy_extensions copy -out "$work/server.crt" 2>/dev/null
install -m 600 -o "$(server_user)" "$work/server.key" "$work/server.crt" "$place/data/"
reload "ssl_cert_file = 'server.crt'" "ssl_key_file = 'server.key'" 'ssl = on'
until "$program" new "$work/tls" --server "$(uri clerk shop)?sslmode=verify-ca&sslrootcert=$work/shop-ca.crt" \
  >"$work/out" 2>&1; do
  grep -q 'does not support SSL' "$work/out" || { cat "$work/out"; fail "TLS does not work"; }
  sleep 0.1  # not reloaded yet
done
refused $'certificate for "db1" .*does not match host name "127.0.0.1"' \
  new "$work/new" --server "$(uri clerk shop)?sslmode=verify-full&sslrootcert=$work/shop-ca.crt"
refused 'certificate verify failed' \
  new "$work/new" --server "$(uri clerk shop)?sslmode=verify-ca&sslrootcert=$work/other-ca.crt"
refused 'root certificate file "/nowhere' new "$work/new" --server "$(uri clerk shop)?sslmode=verify-ca&sslrootcert=/nowhere"

# One table that the role may not write: the sale is refused as a whole.
cp "$work/office/fiscal.xml" "$work/tls/"
refused $'permission denied for table Tickets_Lineas\ngrants the role that right' \
  day "$work/tls" --sales "$work/sales.csv" --grant-credit --tills "$tills"
[[ $(sold) == 0 ]] || fail "something is left of a sale that was refused"
server_sql "$place" shop -c 'GRANT INSERT ON documents."Tickets_Lineas" TO clerk'

server_sql "$place" shop -c 'ALTER ROLE clerk CONNECTION LIMIT 0'
refused $'too many connections for role "clerk"\n-2147217843' sql main 'SELECT Count(*) FROM Bancos' -C "$work/tls"
server_sql "$place" shop -c 'ALTER ROLE clerk CONNECTION LIMIT -1'

# A database of somebody else's stays as it is.
server_sql "$place" postgres -c 'CREATE DATABASE other OWNER clerk'
server_sql "$place" other -c 'CREATE SCHEMA main AUTHORIZATION clerk' -c 'CREATE TABLE main.notes (a int)'
refused $'none of this system\nTavelor_Schema' new "$work/new" --server "$(uri clerk other)"
[[ $(server_sql "$place" other -At -c "SELECT count(*) FROM pg_tables WHERE schemaname = 'main'") == 1 ]] ||
  fail "tables were added to a database of somebody else"
[[ ! -e $work/new/tavelor.xml ]] || fail "a refused installation has settings"

# A disk that is too small, where one in memory may be mounted.
disk=$work/disk
mkdir "$disk"
if mount -t tmpfs -o "size=200m,mode=700,uid=$(id -u "$(server_user)")" tavelor "$disk" 2>/dev/null; then
  trap 'umount -l "$disk" 2>/dev/null || true; clean_up' EXIT
  chmod 711 "$work"
  server_sql "$place" postgres -c "CREATE TABLESPACE small LOCATION '$disk'" \
    -c 'ALTER DATABASE shop SET TABLESPACE small' -c 'CHECKPOINT'
  mount -o "remount,size=$(( $(df --output=used -k "$disk" | tail -n 1) + 400 ))k" "$disk"
  refused $'disk is full\nNo space left on device' day "$work/tls" --sales "$work/sales.csv" --grant-credit --tills "$tills"
  mount -o remount,size=300m "$disk"
  printf 'a full disk after %s sales; ' "$(sold)"
fi
"$program" day "$work/tls" --sales "$work/sales.csv" --grant-credit --tills "$tills" >"$work/out" 2>&1 ||
  { cat "$work/out"; fail "the day does not go on"; }
"$program" -C "$work/tls" fiscal check >"$work/out" 2>&1 || { cat "$work/out"; fail "the records are not whole"; }

# Whatever day the server believes it is: no statement of a day asks it.
if grep -E 'LOG:  (statement|execute)' "$place/log" | grep -iE '\bnow\(|current_(date|time)|(clock|statement|transaction)_timestamp\('; then
  fail "a statement asks the server's clock"
fi
grep -qE 'LOG:  execute' "$place/log" || fail "the server has logged no statement"
echo "all refusals tell what, where and what to do"
