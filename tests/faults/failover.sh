#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# failover.sh [COUNT [SALES]]: eight tills sell SALES sales on a server whose every commit a standby has
# too. In the middle the server is killed with -9, the standby is promoted, and the tills go on by
# themselves: nothing that was acknowledged is lost, nothing is there twice, no number is missing. COUNT
# times, each in a shop of its own.
source "$(dirname "$0")/on_server.sh"

count=${1:-1}
sales=${2:-400}
for (( turn = 1; turn <= count; ++turn )); do
  standby=$place-standby
  server_start "$place" $$ 'wal_level = replica' 'max_wal_senders = 4' 'wal_keep_size = 64MB'
  server_start "$standby" $$ --standby-of "$place" "cluster_name = 'standby'"
  server_sql "$place" postgres -c "ALTER SYSTEM SET synchronous_standby_names = 'FIRST 1 (standby)'" \
    -c 'SELECT pg_reload_conf()' >/dev/null
  while [[ $(server_sql "$place" postgres -At -c 'SELECT sync_state FROM pg_stat_replication') != sync ]]; do
    sleep 0.05
  done
  begin_shop "$sales" "$(socket "$place")" "$(socket "$standby")"

  for till in "${names[@]}"; do sell "$till"; done
  until_sold $(( sales / 8 + RANDOM % (sales / 2) ))
  acknowledged >"$work/acknowledged"
  server_kill "$place"
  begin=$(date +%s%N)
  as_server pg_ctl --pgdata "$standby/data" --wait promote >/dev/null
  promoted=$(( ($(date +%s%N) - begin) / 1000000 ))
  end_day "$sales" "$standby"
  printf '%s sales; killed after %s, promoted in %s ms; %s waits of the tills, the longest of %s s\n' "$sales" \
    "$(wc -l <"$work/acknowledged")" "$promoted" "$(waits)" "$(longest_wait)"
  server_stop "$place" $$
  server_stop "$standby" $$
  rm -rf "${work:?}"/*
done
