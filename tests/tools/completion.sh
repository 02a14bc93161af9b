#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# completion.sh PROGRAM: completes lines in bash, and in zsh and fish where they are there. Each
# command and option that the help tells is offered, and nothing else.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir bin shops
touch sales.csv
ln -s "$program" bin/tavelor
export PATH=$work/bin:$PATH

"$program" completion bash >tavelor.bash
# shellcheck disable=SC1091
source ./tavelor.bash

# offered LINE: what bash offers behind it, sorted.
offered() {
  local line=$1
  read -ra COMP_WORDS <<<"$line"
  if [[ $line == *' ' ]]; then COMP_WORDS+=(''); fi
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  _tavelor 2>/dev/null
  printf '%s\n' "${COMPREPLY[@]}" | sort | tr '\n' ' ' | sed 's/ $//'
}
expect() {
  local found
  found=$(offered "$1")
  [[ $found == "$2" ]] || { printf 'tavelor: "%s" offers\n%s\nand not\n%s\n' "$1" "$found" "$2"; exit 1; }
}

expect 'tavelor imp' 'import'
expect 'tavelor import ' 'articles customers database suppliers'
expect 'tavelor -C shops import d' 'database'
expect 'tavelor --in import import d' 'database'
expect 'tavelor import database --re' '--report --rewrite'
expect 'tavelor import database ' 'bin sales.csv shops tavelor.bash'
expect 'tavelor import database --report sa' 'sales.csv'
expect 'tavelor -C sh' 'shops'
expect 'tavelor --color ' 'always auto never'
expect 'tavelor new shop --locale e' 'es-ES'
expect 'tavelor call ClsBanc' 'ClsBancos'
expect 'tavelor call ClsBancos ' ''
expect 'tavelor import articles --decimal p' 'point'
expect 'tavelor completion ' 'bash fish zsh'
expect 'tavelor nothing ' ''

# The same names as the help's, for each command.
same_as_help() {
  "$program" "$@" --help >help.txt
  local options below
  options=$(sed -n '/^Options:/,/^$/p' help.txt | grep -oE '^  (-[A-Za-z]|--[a-z0-9-]+)(,--[a-z0-9-]+)?' | tr ', ' '\n\n' |
    grep . | sort | tr '\n' ' ' | sed 's/ $//')
  expect "tavelor ${*:+$* }-" "$options"
  below=$(sed -n '/^Subcommands:/,/^$/p' help.txt | awk '/^  [a-z0-9]/ { print $1 }')
  if [[ -z $below ]]; then return; fi
  expect "tavelor ${*:+$* }" "$(sort <<<"$below" | tr '\n' ' ' | sed 's/ $//')"
  local each
  for each in $below; do same_as_help "$@" "$each"; done
}
same_as_help

if command -v zsh >/dev/null; then
  "$program" completion zsh >_tavelor
  # As zsh calls functions of bash; it picks what fits the word by itself.
  zsh -f -c 'autoload -U compinit && compinit -u -D && source ./_tavelor && [[ ${_comps[tavelor]} == *_tavelor* ]] || exit 1
    emulate sh; setopt kshglob noshglob braceexpand
    COMP_WORDS=(tavelor import d) COMP_CWORD=2; _tavelor; echo "${COMPREPLY[@]}"
    COMP_WORDS=(tavelor -C x import database --re) COMP_CWORD=5; _tavelor; echo "${COMPREPLY[@]}"' >zsh.txt
  diff - zsh.txt <<<"articles customers suppliers database
-h --help --map --into --rewrite --report --dry-run -C --in --trace"
fi
if command -v fish >/dev/null; then
  "$program" completion fish >tavelor.fish
  found=$(fish --no-config -c 'source tavelor.fish; complete -C "tavelor import d"; complete -C "tavelor import database --re"' | cut -f 1 | tr '\n' ' ')
  [[ $found == 'database --report --rewrite ' ]] || { echo "fish offers $found"; exit 1; }
fi
echo complete
