# SPDX-License-Identifier: MIT
# seed_folders TARGET FOLDER: the folders with the seeds of a target. Those that are statements are
# cut from the corpus into FOLDER, a file each, their values between the bytes 1 and 2.
# shellcheck shell=bash

seed_folders() {
  local target=$1 folder=$2
  case $target in
  lexer | translate | plans)
    mkdir -p "$folder"
    cat tests/dialect/corpus/*.txt |
      sed -n '/^\(#\|== \|=> \|database: \|$\)/!p' | sed $'s/«/\x01/g; s/»/\x02/g' |
      awk -v folder="$folder" '{ file = folder "/" NR; printf "%s", $0 > file; close(file) }'
    echo "$folder"
    ;;
  esac
  if [[ -d fuzz/seeds/$target ]]; then echo "fuzz/seeds/$target"; fi
}
