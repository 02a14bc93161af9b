#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# A source starts with its licence line and one line that tells what it is; a header has
# #pragma once, one in C a guard; no file that we write is longer than 600 lines, unless long_files.txt says why.
source "$(dirname "$0")/../../scripts/lib/common.sh"

limit=600
reasons=tests/checks/long_files.txt
status=0
complain() {
  echo "$*"
  status=1
}

while IFS= read -r file; do
  complain "$file: starts without '// SPDX-License-Identifier: MIT' and a line on what it is"
done < <(own_sources | xargs -r -d '\n' awk '
  FNR == 1 && $0 != "// SPDX-License-Identifier: MIT" { print FILENAME; nextfile }
  FNR == 2 { if ($0 !~ /^\/\/ ./) print FILENAME; nextfile }')
while IFS= read -r file; do
  complain "$file: no #pragma once"
done < <(own_files '*.hpp' | xargs -r -d '\n' grep -L '^#pragma once$')

while IFS= read -r file; do
  complain "$file: no guard"
done < <(own_files '*.h' | xargs -r -d '\n' grep -L '^#ifndef TAVELOR_')

while read -r lines file; do
  [[ $lines -gt $limit ]] || continue
  grep -q "^$file  *[^ ]" $reasons || complain "$file: $lines lines; split it, or give the reason in $reasons"
done < <(own_files '*.cpp' '*.hpp' '*.c' '*.h' '*.sh' '*.cmake' 'scripts/*' | xargs -r -d '\n' wc -l | grep -v ' total$')
while read -r file _; do
  [[ -f $file && $(wc -l <"$file") -gt $limit ]] || complain "$reasons: $file needs no reason any more"
done < <(grep -v '^#' $reasons)

[[ $status -eq 0 ]] && echo "The layout holds."
exit $status
