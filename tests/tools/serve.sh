#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# serve.sh PROGRAM: tavelor serve as a process: its PIN and keys, a closed standard error, a stop in good
# order, and a death, behind which a session is still there.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
work=$(mktemp -d)
server=
trap '[[ -z $server ]] || kill -9 "$server" 2>/dev/null; rm -rf "$work"' EXIT
cd "$work"
fail() { echo "$*"; exit 1; }

# start [REDIRECTION OF STANDARD ERROR]: begins one on a free port.
start() {
  rm -f out.txt  # of the one before, whose port is another
  : >out.txt
  "$program" serve shop --port 0 "$@" >>out.txt &
  server=$!
  for _ in $(seq 100); do
    port=$(sed -n 's/^back office .*:\([0-9]*\)\/$/\1/p' out.txt)
    [[ -n $port ]] && return
    sleep 0.1
  done
  fail "nothing listens"
}
# ask REQUEST: its answer, from the first line on.
ask() {
  exec 3<>"/dev/tcp/127.0.0.1/$port"
  printf '%b' "$1" >&3
  timeout 10 cat <&3
  exec 3>&-
}
get() { ask "GET $1 HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n${2:-}\r\n"; }

"$program" new shop >/dev/null
"$program" seed shop >/dev/null
export TAVELOR_HOME=$work/shop
"$program" pin 1 --role owner <<<1234 2>err.txt && fail "a PIN for nobody"
grep -q 'There is no employee 1' err.txt || fail "$(cat err.txt)"
"$program" sql main "INSERT INTO Empleados (Codigo, Nombre, Activo) VALUES ('1', 'Ana', True)" >/dev/null
"$program" pin 1 --role owner <<<12 2>err.txt && fail "a PIN of two digits"
"$program" pin 1 --role owner </dev/null 2>err.txt && fail "no PIN at all"
[[ $("$program" pin 1 --role owner <<<1234) == "1 may sign in as owner" ]] || fail "no PIN was set"
"$program" pin | grep -q '^1  *owner  *Ana$' || fail "who may sign in is not told"
key=$("$program" key reports --rights office.read)
[[ $key == tvk_* ]] || fail "no key: $key"
"$program" serve shop --listen 0.0.0.0 --port 0 2>err.txt && fail "it listens for others"
grep -q 'certificate' err.txt || fail "$(cat err.txt)"

# Standard error is closed, as by a terminal that is gone.
start 2>&-
get /health | grep -q '"status":"ok"' || fail "it is not well"
get /api/v1/session "Authorization: Bearer $key\r\n" | grep -q '"rights":\["office.read"\]' || fail "the key is not known"
body='{"employee":"1","pin":"1234"}'
answer=$(ask "POST /api/v1/session HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nContent-Type: application/json\r\nContent-Length: ${#body}\r\n\r\n$body")
cookie=$(sed -n 's/^Set-Cookie: \([^;]*\).*/\1/p' <<<"$answer")
[[ -n $cookie ]] || fail "$answer"

# Killed: the session and the shop are still there.
kill -9 "$server"
wait "$server" 2>/dev/null || true
start --log "$work/log.txt"
get /api/v1/session "Cookie: $cookie\r\n" | grep -q '"name":"Ana"' || fail "the session is gone"
grep -q '1 signs in' < <("$program" sql main "SELECT Detalle FROM Web_Registro") || fail "the log of changes is empty"

# Stopped: in good order.
kill -TERM "$server"
wait "$server" || fail "exit code $? after SIGTERM"
server=
grep -q '"event":"stopped"' log.txt || fail "$(cat log.txt)"
[[ $("$program" key reports --remove) == "the key reports is taken back" ]] || fail "the key stays"
[[ $("$program" pin 1 --remove) == "1 cannot sign in any more" ]] || fail "the PIN stays"
echo "It serves, dies and stops in good order."
