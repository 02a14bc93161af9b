#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# outages.sh line|restart|till [COUNT [SALES]]: eight tills sell SALES sales on a server, and COUNT times
# in the middle
#   line     every line between them and the server breaks, and now and then stays down for a while
#   restart  the server restarts: it is asked to, or switched off and on
#   till     the machine of a till dies with kill -9, and another takes its place at once
# They go on by themselves: nothing is lost, nothing is there twice, no number is missing.
source "$(dirname "$0")/on_server.sh"

harm=${1:?usage: outages.sh line|restart|till [COUNT [SALES]]}
count=${2:-4}
sales=${3:-400}

server_start "$place" $$
hosts=("$(socket "$place")")
if [[ $harm == line ]]; then
  coproc "$line_program" "$place/.s.PGSQL.$(cat "$place/port")"
  line=$COPROC_PID
  read -r port <&"${COPROC[0]}"
  hosts=("127.0.0.1:$port")
fi
begin_shop "$sales" "${hosts[@]}"

harm() {
  case $harm in
    line)
      if (( RANDOM % 3 )); then
        kill -USR1 "$line"
      else
        kill -USR2 "$line"
        sleep "0.$(( RANDOM % 900 + 100 ))"
        kill -USR2 "$line"
      fi
      ;;
    restart)
      if (( RANDOM % 2 )); then server_down "$place" fast; else server_kill "$place"; fi
      server_up "$place"
      ;;
    till)
      local till=${names[RANDOM % ${#names[@]}]}
      kill -9 "${running[$till]}" 2>/dev/null || return 0  # it has sold its day
      wait "${running[$till]}" 2>/dev/null || true
      sell "$till"
      ;;
    *) fail "no such harm: $harm" ;;
  esac
}

for till in "${names[@]}"; do sell "$till"; done
for (( done = 1; done <= count; ++done )); do
  until_sold $(( sales * done / (count + 2) ))
  acknowledged >"$work/acknowledged$done"
  harm
done
end_day "$sales"
printf '%s sales; %s times %s; %s waits of the tills, the longest of %s s\n' "$sales" "$count" "$harm" \
  "$(waits)" "$(longest_wait)"
