#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# help.sh TAVELOR FOLDER: writes what the command says of itself, a file a subcommand.
set -euo pipefail
tavelor=$1
folder=$2
rm -rf "$folder"
mkdir -p "$folder"
"$tavelor" --help >"$folder/tavelor.txt"
# Subcommands stand below their heading, two blanks before each, as far as an empty line.
awk '/^Subcommands:/ { on = 1; next } !NF { on = 0 } on && /^  [a-z]/ { print $1 }' "$folder/tavelor.txt" |
  while IFS= read -r name; do
    "$tavelor" "$name" --help >"$folder/tavelor $name.txt"
  done
