#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# send.sh COUNT: kills the sender of a shop's records COUNT times, at random moments and between the
# tax office's taking a message and its answer. In the end the tax office has each record once, and
# the shop knows it. RANDOM_SEED repeats a run.
source "$(dirname "$0")/common.sh"

count=${1:?usage: send.sh COUNT}
RANDOM=${RANDOM_SEED:-$$}
printf 'seed %s\n' "${RANDOM_SEED:-$$}"
office=$(realpath "${TAX_OFFICE:?set TAX_OFFICE to the program of that name}")

"$office" "$work" 300 >"$work/office" 2>&1 &
caller=$!
trap 'kill $caller || true; wait $caller 2>/dev/null || true; rm -rf "$work"' EXIT
until [[ -f $work/url ]]; do sleep 0.05; done

new_shop "$work/shop"
cd "$work/shop"
"$program" fiscal setup --nif 89890001K --name "Colmado Rius" --producer-nif B12345674 --producer "Talleres Norte SL" \
  --installation 1 --mode verifactu --start 2024-10-28 --endpoint "$(cat "$work/url")" >/dev/null
day . >/dev/null || fail "the day does not reconcile"
"$program" fiscal send || fail "the day is not sent"

taken() { wc -l <"$work/taken"; }

ticket=0
for (( killed = 1; killed <= count; ++killed )); do
  for (( more = 0; more < 2; ++more )); do
    "$program" fiscal invoice $(( ++ticket )) --name "Ñandú SA" --nif A58818501 >/dev/null
  done
  before=$(taken)
  "$program" fiscal send >"$work/sent" 2>&1 &
  sender=$!
  if (( killed % 2 )); then
    # It has the message, and answers only some time later.
    until (( $(taken) > before )) || ! kill -0 $sender 2>/dev/null; do sleep 0.01; done
  else
    sleep "0.$(( RANDOM % 5 ))"
  fi
  kill -9 $sender 2>/dev/null || true
  wait $sender 2>/dev/null || true
done
"$program" fiscal send >"$work/sent" 2>&1 || { cat "$work/sent"; fail "what is left is not sent"; }

records=$("$program" sql documents "SELECT Count(*) AS n FROM Fiscal_Registros" --csv | number)
[[ $(taken) == "$records" ]] || fail "the tax office has $(taken) records of $records"
[[ -z $(sort "$work/taken" | uniq -d) ]] || fail "the tax office has taken a record twice"
"$program" fiscal status >"$work/status"
grep -q "^$records records accepted, 0 of them with errors; 0 refused\$" "$work/status" &&
  grep -q '^0 records wait$' "$work/status" || { cat "$work/status"; fail "the shop does not know what was accepted"; }
"$program" fiscal check >"$work/checked" || { cat "$work/checked"; fail "the chain is not whole"; }
printf '%d kills; %s\n' "$count" "$(head -1 "$work/checked")"
