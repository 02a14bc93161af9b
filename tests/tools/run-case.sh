#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# run-case.sh PROGRAM CASE: a case is a text of "## comments", of "$ command" lines and of what each
# command answers, standard error included, with "[exit N]" behind it when N is not 0. The commands
# run one after another in an empty folder, and the answers must be those of the text; the folder's
# name reads FOLDER and times read N. With TAVELOR_APPROVE=1 the answers become the text: read the
# difference and commit it.
set -euo pipefail
export LC_ALL=C.UTF-8

program=$(realpath "$1")
case=$2
folder=$(realpath "$(mktemp -d)")
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin" "$folder/work"
ln -s "$program" "$folder/bin/tavelor"
ln -s "$(dirname "$(realpath "$0")")/../support/make_mdb.py" "$folder/bin/make-mdb"
export PATH="$folder/bin:$PATH"
unset TAVELOR_HOME NO_COLOR

# The commands read no input, and never this script's.
answer() {
  local code=0
  (cd "$folder/work" && bash -o pipefail -c "$1") </dev/null >"$folder/output" 2>&1 || code=$?
  sed -E "s|$folder/work|FOLDER|g; s/[0-9]+ (µs|us)/N \1/" "$folder/output"
  if [[ -s $folder/output && $(tail -c 1 "$folder/output" | wc -l) -eq 0 ]]; then echo; fi
  if [[ $code -ne 0 ]]; then echo "[exit $code]"; fi
}

separator=
while IFS= read -r line; do
  case $line in
    '## '*)
      printf '%s%s\n' "$separator" "$line"
      separator=$'\n'
      ;;
    '$ '*)
      printf '%s\n' "$line"
      answer "${line#\$ }"
      ;;
  esac
done <"$case" >"$folder/answers"

if [[ ${TAVELOR_APPROVE:-} == 1 ]]; then cp "$folder/answers" "$case"; fi
diff -u "$case" "$folder/answers"
