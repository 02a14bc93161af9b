# SPDX-License-Identifier: MIT
# A private PostgreSQL server in a folder of its own, for tests and the demo; a server that is there
# already is neither touched nor asked. Source it behind common.sh. The folder holds:
#   .s.PGSQL.PORT   the socket, for this user and root only
#   port            5432, or one that was free when the server listens on this computer's TCP too
#   data            the cluster, in memory where there is room
#   log             what the server says
#   pgpass          the password of the user "tavelor", as libpq's passfile; only TCP asks for it
#   users/          a file for each process that needs the server, named by its number, or "kept"
#   watcher         the number of the process that removes all this once the last of them is gone,
#                   in whatever way it went
# The server refuses to be root: for root, everything of it runs as another user. Nothing is flushed
# to the disk (fsync is off): a power cut loses such a server, and may.
# shellcheck shell=bash

# The folder of the programs of the newest server from version 13 on; fails when there is none.
server_programs() {
  local folder
  while IFS= read -r folder; do
    if [[ -x $folder/bin/initdb && -x $folder/bin/postgres && $(basename "$folder") -ge 13 ]]; then
      echo "$folder/bin"
      return
    fi
  done < <(find /usr/lib/postgresql -mindepth 1 -maxdepth 1 -name '[0-9][0-9]' 2>/dev/null | sort -r)
  return 1
}

# Who the server runs as: this user; for root that of the package, or else nobody.
server_user() {
  if [[ $(id -u) -ne 0 ]]; then
    id -un
  elif getent passwd postgres >/dev/null; then
    echo postgres
  else
    echo nobody
  fi
}

# as_server COMMAND...: runs a program of the server, or any other, as that user. What this shell's
# environment and home say of other servers does not reach it.
as_server() (
  user=$(server_user)
  PATH=$(server_programs):$PATH
  HOME=/
  unset "${!PG@}"
  cd /
  [[ $(id -u) -ne 0 ]] || set -- setpriv --reuid "$user" --regid "$(id -g "$user")" --init-groups "$@"
  exec "$@"
)

# server_conninfo FOLDER [DATABASE]: how to reach it, as the user "tavelor", who may do everything.
server_conninfo() { echo "host=$1 port=$(cat "$1/port") dbname=${2:-postgres} user=tavelor"; }

# server_sql FOLDER DATABASE ARGUMENT...: psql, without what its user likes at home.
server_sql() {
  local folder=$1 database=$2
  shift 2
  as_server psql -X -q -v ON_ERROR_STOP=1 -d "$(server_conninfo "$folder" "$database")" "$@"
}

# server_new FOLDER [--standby-of OTHER] [--tcp] [SETTING...]: makes a cluster that is not started, with
# more lines for its postgresql.conf. The folder is missing or empty. A standby is a copy of the server in
# the folder OTHER, which runs and has wal_level = replica, and repeats what that one writes.
server_new() {
  local folder=$1 port=5432 addresses='' data=$1/data memory=/dev/shm room primary=''
  shift
  if [[ ${1:-} == --standby-of ]]; then
    primary=$2
    shift 2
  fi
  if [[ ${1:-} == --tcp ]]; then
    shift
    addresses=127.0.0.1
    # One that nobody answers at, below those that the system gives away by itself.
    while port=$((20000 + RANDOM % 12000)) && (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
  fi
  mkdir -p "$folder"
  chmod 700 "$folder"
  if [[ -w $memory ]] && room=$(df --output=avail -k $memory | tail -n 1) && [[ $room -gt 1048576 ]]; then
    ln -s "$memory/$(basename "$folder")" "$data"
    data=$memory/$(basename "$folder")
  fi
  mkdir -m 700 "$data"
  echo "$port" >"$folder/port"
  : >"$folder/log"
  (umask 077 && head -c 18 /dev/urandom | base64 >"$folder/pgpass")
  [[ $(id -u) -ne 0 ]] || chown "$(server_user):" "$folder" "$data" "$folder/log" "$folder/pgpass"
  if [[ -n $primary ]]; then
    cat "$primary/pgpass" >"$folder/pgpass"
    as_server pg_basebackup --pgdata "$data" --dbname "$(server_conninfo "$primary")" --checkpoint fast \
      --write-recovery-conf --no-sync >>"$folder/log"
    printf '%s\n' "listen_addresses = '$addresses'" "port = $port" "unix_socket_directories = '$folder'" "$@" \
      >>"$data/postgresql.conf"
    return
  fi
  as_server initdb --pgdata "$data" --username tavelor --pwfile "$folder/pgpass" --auth-local trust \
    --auth-host scram-sha-256 --encoding UTF8 --locale C --no-sync --no-instructions >>"$folder/log"
  sed -i 's/^/*:*:*:tavelor:/' "$folder/pgpass"
  # Times, dates and bytes that a session does not ask for come in no form that a program here reads:
  # what forgets to ask is found out.
  {
    cat <<END
listen_addresses = '$addresses'
port = $port
unix_socket_directories = '$folder'
unix_socket_permissions = 0700
max_connections = 300
shared_buffers = 128MB
dynamic_shared_memory_type = mmap
fsync = off
full_page_writes = off
wal_level = minimal
max_wal_senders = 0
max_wal_size = 256MB
autovacuum = off
jit = off
timezone = 'Pacific/Kiritimati'
datestyle = 'SQL, DMY'
intervalstyle = sql_standard
bytea_output = escape
log_timezone = UTC
log_line_prefix = '%m [%p] %u@%d '
END
    printf '%s\n' "$@"
  } >>"$data/postgresql.conf"
}

# server_kill FOLDER: kills all of its processes at once, as a power cut does.
server_kill() {
  local first
  read -r first <"$1/data/postmaster.pid"
  # shellcheck disable=SC2046
  kill -9 "$first" $(ps -o pid= --ppid "$first") 2>/dev/null || true
  while server_process_lives "$first"; do sleep 0.01; done
  server_bury "$1"
}

# server_bury FOLDER: takes away the marks of one whose first process was killed, and waits for those that
# it has left, which see it and go. To pg_ctl it lives for as long as its parent does not ask how it ended.
server_bury() {
  local first data tries
  { read -r first <"$1/data/postmaster.pid"; } 2>/dev/null || return 0
  if server_process_lives "$first"; then return 0; fi
  data=$(realpath "$1/data")
  for ((tries = 0; tries < 1000; tries++)); do
    # Its processes work in its data.
    [[ -n $(find /proc -maxdepth 2 -path '/proc/[0-9]*/cwd' -lname "$data" -print -quit 2>/dev/null) ]] || break
    sleep 0.01
  done
  rm -f "$1/data/postmaster.pid" "$1"/.s.PGSQL.*.lock
}

# server_up FOLDER: starts it and waits until it answers. Nothing to do when it does.
server_up() {
  server_bury "$1"
  if as_server pg_ctl --pgdata "$1/data" status >/dev/null 2>&1; then return; fi
  as_server pg_ctl --pgdata "$1/data" --log "$1/log" --wait --timeout 120 start </dev/null >/dev/null 2>&1 || {
    echo "The server in $1 does not start; its log ends with:" >&2
    tail -n 20 "$1/log" >&2
    return 1
  }
}

# server_down FOLDER [smart|fast|immediate]: stops it; immediate is as if the machine were switched off.
server_down() {
  as_server pg_ctl --pgdata "$1/data" --mode "${2:-fast}" --wait --timeout 120 stop >/dev/null 2>&1
}

# server_remove FOLDER: stops it and removes all of it.
server_remove() {
  [[ -d $1 ]] || return 0
  server_down "$1" immediate || true
  rm -rf "/dev/shm/${1##*/}" "$1"
}

# server_process_lives NUMBER: and is not only waiting to be buried.
server_process_lives() {
  local state
  { read -r state <"/proc/$1/stat"; } 2>/dev/null && [[ ! $state =~ \)\ [ZX] ]]
}

# server_is_watched FOLDER: its watcher lives, and is not another program of the same number.
server_is_watched() {
  local watcher
  { read -r watcher <"$1/watcher"; } 2>/dev/null && grep -qzF -- "$1" "/proc/$watcher/cmdline" 2>/dev/null
}

# server_is_needed FOLDER: one of its users lives. Forgets those that do not.
server_is_needed() {
  local user needed=1
  for user in "$1"/users/*; do
    if [[ $user == */kept ]] || server_process_lives "${user##*/}"; then
      needed=0
    else
      rm -f "$user"
    fi
  done
  return $needed
}

# Starting, stopping and removing happen one at a time.
server_alone() {
  (
    flock 9
    "$@" 9<&-
  ) 9</tmp
}

# server_watch FOLDER: returns when nobody needs the server any more and it is removed.
server_watch() {
  while [[ -d $1 ]]; do
    server_is_needed "$1" || server_alone server_remove_unless_needed "$1"
    sleep 1
  done
}
server_remove_unless_needed() { server_is_needed "$1" || server_remove "$1"; }

# server_sweep: removes what is left where a watcher was killed too, or the machine was.
server_sweep() {
  local folder
  for folder in /tmp/tavelor-server-*/; do
    folder=${folder%/}
    if [[ -O $folder/watcher ]] && ! server_is_watched "$folder"; then server_remove "$folder"; fi
  done
  for folder in /dev/shm/tavelor-server-*/; do
    folder=${folder%/}
    if [[ -w $folder && ! -e /tmp/${folder##*/} ]]; then rm -rf "$folder"; fi
  done
}

# server_start FOLDER USER [--standby-of OTHER] [--tcp] [SETTING...]: a server in FOLDER, which is /tmp/tavelor-server-...,
# until the last process that has named itself as a USER is gone; "kept" is never gone by itself. One
# that is there already is shared.
server_start() { server_alone server_start_alone "$@"; }
server_start_alone() {
  local folder=$1 user=$2
  shift 2
  server_sweep
  if [[ -e $folder && ! -O $folder/port ]]; then
    echo "$folder belongs to somebody else." >&2
    return 1
  fi
  if server_is_watched "$folder"; then
    : >"$folder/users/$user"
  else
    mkdir -m 700 "$folder"
    mkdir "$folder/users"
    : >"$folder/users/$user"
    setsid scripts/server watch "$folder" </dev/null >/dev/null 2>&1 &
    echo $! >"$folder/watcher"
    server_new "$folder" "$@"
  fi
  server_up "$folder"
}

# server_stop FOLDER USER: the user needs it no more.
server_stop() {
  rm -f "$1/users/$2"
  server_alone server_remove_unless_needed "$1"
}
