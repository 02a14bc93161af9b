#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The private server of tests and demo serves whoever asks, and is gone with them however they go.
source "$(dirname "$0")/../../scripts/lib/common.sh"
source scripts/lib/server.sh

server_programs >/dev/null || { echo "PostgreSQL's server is not installed."; exit 77; }
folder=/tmp/tavelor-server-check-$$
trap 'server_remove "$folder"' EXIT

fail() {
  echo "FAILED: $*"
  exit 1
}
# user ARGUMENT...: a process that needs the server until it is killed; its number is in $user.
user() {
  (
    server_start "$folder" "$BASHPID" "$@" || exit
    echo ready >"$folder/ready-$BASHPID"
    exec sleep 300
  ) &
  user=$!
  for (( i = 0; i < 600; ++i )); do
    rm "$folder/ready-$user" 2>/dev/null && return
    sleep 0.1
  done
  fail "the server does not start"
}
is_gone() {
  for (( i = 0; i < 100; ++i )); do
    [[ -e $folder || -e /dev/shm/${folder##*/} ]] || return 0
    sleep 0.1
  done
  return 1
}
answer() { server_sql "$folder" postgres -At -c "$1"; }

user --tcp "work_mem = '5MB'"
first=$user
[[ $(answer 'SHOW work_mem') == 5MB ]] || fail "a setting is not taken"
[[ $(answer 'SHOW fsync') == off ]] || fail "it flushes to a disk"
cluster=$(answer 'SHOW data_directory')
as_server psql -X -At -d "host=127.0.0.1 port=$(cat "$folder/port") dbname=postgres user=tavelor passfile=$folder/pgpass" \
  -c 'SELECT 1' >/dev/null || fail "TCP with the password"
if PGPASSWORD=wrong psql -X -d "host=127.0.0.1 port=$(cat "$folder/port") dbname=postgres user=tavelor" -c 'SELECT 1' 2>/dev/null; then
  fail "TCP with a wrong password"
fi

user
[[ $(answer 'SHOW data_directory') == "$cluster" ]] || fail "the second user has another server"
answer 'CREATE TABLE kept ()'
server_down "$folder" immediate
server_up "$folder"
answer 'TABLE kept' >/dev/null || fail "a crash has lost a table"
process=$(as_server head -n 1 "$folder/data/postmaster.pid")
kill -9 "$process"
while server_process_lives "$process"; do sleep 0.01; done
server_up "$folder"
answer 'TABLE kept' >/dev/null || fail "it is taken for running when its first process was killed"

kill -9 "$first"
sleep 2
answer 'SELECT 1' >/dev/null || fail "it is gone before its last user"
kill -9 "$user"
is_gone || fail "it is there after its last user"

user
watcher=$(cat "$folder/watcher")
kill -9 "$watcher" "$user"
server_alone server_sweep
is_gone || fail "what nobody watches is not swept away"
echo "A private server lives as long as it is needed."
