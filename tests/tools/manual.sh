#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# manual.sh PROGRAM: writes the manual pages. Each command has one, man and mandoc find no fault with
# them, and each option that the help tells stands in its page.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export SOURCE_DATE_EPOCH=1795305600
"$program" manual man/man1 >/dev/null
grep -q '2026-11-22' man/man1/tavelor.1

checked=0
check_page() {
  local name page
  name=$(IFS=-; echo "tavelor${*:+-}$*")
  page=man/man1/$name.1
  [[ -s $page ]] || { echo "no page $name"; exit 1; }
  # Warnings come on standard error; a page is never empty.
  man --warnings=all -E UTF-8 -l "$page" >"$name.txt" 2>"$name.err"
  [[ ! -s $name.err && -s $name.txt ]] || { echo "$name:"; cat "$name.err"; exit 1; }
  if command -v mandoc >/dev/null; then mandoc -T lint -W warning "$page"; fi
  "$program" "$@" --help >help.txt
  col -b <"$name.txt" >plain.txt
  local option
  for option in $(sed -n '/^Options:/,/^$/p' help.txt | grep -oE '^  (-[A-Za-z]|--[a-z0-9-]+)(,--[a-z0-9-]+)?' | tr ',' ' '); do
    grep -qF -- "$option" plain.txt || { echo "$name does not tell $option"; exit 1; }
  done
  checked=$((checked + 1))
  local below
  for below in $(sed -n '/^Subcommands:/,/^$/p' help.txt | awk '/^  [a-z0-9]/ { print $1 }'); do
    check_page "$@" "$below"
  done
}
check_page
# Every page is one of a command.
[[ $(find man -name '*.1' | wc -l) -eq $checked && $checked -gt 30 ]]
# Words of the help arrive as they are.
col -b <tavelor.txt >plain.txt
grep -qF 'call ClsBancos CrearBanco "" "Banco de Ahorro"' plain.txt
printf '%s pages\n' "$checked"
