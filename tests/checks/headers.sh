# SPDX-License-Identifier: MIT
# Shared by the checks on headers: source it after scripts/lib/common.sh.
# shellcheck shell=bash

# True when the header is not installed, by cmake/private_headers.txt.
is_private() {
  local header=$1 line private=1
  while IFS= read -r line; do
    case $line in
      '' | '#'*) ;;
      '!'*) [[ $header == ${line#!} ]] && private=1 ;;
      *) [[ $header == $line ]] && private=0 ;;
    esac
  done <cmake/private_headers.txt
  return $private
}

private_headers() {
  own_files 'tavelor/*.hpp' | while IFS= read -r header; do
    if is_private "$header"; then printf '%s\n' "$header"; fi
  done
}

public_headers() {
  own_files 'tavelor/*.hpp' | while IFS= read -r header; do
    is_private "$header" || printf '%s\n' "$header"
  done
}
