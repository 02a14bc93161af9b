#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The main road of the tavelor command, in an installation of its own that is gone afterwards:
# banks are made, changed, looked up, and attacked. Called by scripts/demo once the command is built.
source "$(dirname "$0")/common.sh"

program=${TAVELOR:-build/release/tools/tavelor}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export TAVELOR_HOME=$folder/shop

tell() { printf '\n# %s\n' "$*"; }
# tavelor ARGUMENTS...: shows the command as it would be typed, then runs it.
tavelor() {
  printf '$ tavelor'
  local argument
  for argument in "$@"; do
    if [[ $argument =~ ^[[:alnum:]_.,/=-]+$ ]]; then
      printf ' %s' "${argument/#$folder\//}"
    else
      printf ' "%s"' "$argument"
    fi
  done
  printf '\n'
  "$program" "$@" 2>&1 | sed "s|$folder/||g"
}

tell "An installation is one folder."
tavelor new "$TAVELOR_HOME"

tell "What a shop needs on its first day: taxes, payments, a till, a warehouse, this year's counters."
tavelor seed "$TAVELOR_HOME"

tell "Two banks, by the quick creation that other forms use. Codes are proposed and padded."
tavelor call ClsBancos CrearBanco "" "Banco de Ahorro"
tavelor call ClsBancos CrearBanco "" "Caja Rural"

tell "The first becomes the default one: opened, changed and written as a form does it."
tavelor edit ClsBancos --id "00001 " IBAN=ES7921000813610123456789 Swift=CAIXESBBXXX \
  Predeterminada=True --columns Código,IBAN,Swift,Predeterminada
tavelor browse ClsBancos --columns Código,Descripción,Predeterminada --sort "Descripción DESC"

tell "Business members, called by name: the default bank, IBAN and BIC, the account on a document."
tavelor call ClsBancos GetPredeterminada
tavelor call ClsBancos GetIbanBic "00001 "
tavelor call ClsBancos GetValor "00002 "
tavelor call ClsBancos NuevoCodigo

tell "A value can break its statement, and do nothing else."
tavelor call ClsBancos GetWeb "' OR '1'='1" || true
tavelor sql main "SELECT Bnco FROM Bancos" || true

tell "What ran, as the classes joined it."
tavelor browse ClsBancos --mode registro --id "00002 " --columns Código,Descripción --trace
