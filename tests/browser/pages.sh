#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# pages.sh PROGRAM FOLDER [ARGUMENT...]: the tests of web/tests/FOLDER against the pages that the program
# serves. Arguments go to Playwright: -g "killed".
program=$(realpath "$1")
folder=$2
shift 2
source "$(dirname "$0")/../../scripts/lib/common.sh"
source scripts/lib/pages.sh
for tool in chromium node npm; do
  command -v "$tool" >/dev/null || { echo "$tool is not installed: skipped"; exit 77; }
done
install_pages_tools
cd web
TAVELOR=$program exec node_modules/.bin/playwright test "tests/$folder/" "$@"
