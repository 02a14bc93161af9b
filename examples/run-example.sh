#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# run-example.sh PROGRAM EXPECTED [ARGUMENT...]: runs an example in an empty folder and compares its output.
# With TAVELOR_APPROVE=1 the output becomes the expected one: read the difference and commit it.
set -euo pipefail

program=$(realpath "$1")
expected=$2
shift 2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

(cd "$folder" && "$program" "$@") >"$folder/output.txt"
if [[ ${TAVELOR_APPROVE:-} == 1 ]]; then
  cp "$folder/output.txt" "$expected"
fi
diff -u "$expected" "$folder/output.txt"
