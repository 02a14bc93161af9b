#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main job, a day at the till, in a shop that stays in build/demo until the next time. Called by
# scripts/demo once the command is built.
source "$(dirname "$0")/common.sh"

program=${TAVELOR:-build/release/tools/tavelor}
folder=build/demo
rm -rf "$folder"
mkdir -p "$folder"
export TAVELOR_HOME=$folder/shop

tell() { printf '\n# %s\n' "$*"; }
# tavelor ARGUMENTS...: shows the command as it would be typed, then runs it.
tavelor() {
  printf '$ tavelor'
  local argument
  for argument in "$@"; do
    if [[ $argument =~ ^[[:alnum:]_.,/=-]+$ ]]; then
      printf ' %s' "$argument"
    else
      printf ' "%s"' "$argument"
    fi
  done
  printf '\n'
  "$program" "$@" 2>&1 | sed "s|$PWD/||g"
}

tell "An installation is one folder, with what a shop needs on its first day."
tavelor new "$TAVELOR_HOME"
tavelor seed "$TAVELOR_HOME"

tell "A day at three tills: every sale moves its stock, every till is closed, nothing is missing."
tavelor day "$TAVELOR_HOME"

tell "The same day again sells nothing twice."
tavelor day "$TAVELOR_HOME" | sed -n '1,2p;$p'

tell "A ticket as its receipt, from history, and the four places that hold the stock of an article."
tavelor ticket 17
tavelor stock PAN001

tell "Any class, any member, by name. A value can break its statement, and do nothing else."
tavelor call ClsCierres SaldoAnterior "20/11/2026" 01 "" "" 0
tavelor call ClsTickets CodigoLibre 17
tavelor call ClsBancos GetWeb "' OR '1'='1" || true

tell "What ran, as the classes joined it."
tavelor browse ClsCierres --columns Código,Caja,Total,Saldo --trace
