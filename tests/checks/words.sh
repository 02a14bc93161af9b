#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# No text may send its reader to a document or a folder that is not in this repository: section
# numbers of other papers, paths of one machine.
source "$(dirname "$0")/../../scripts/lib/common.sh"

elsewhere='\bPart [1-9]\.[1-9]\b|\bas[ ]specified\b|\bthe[ ]specification\b|\bspec[.]md\b|(^|[^[:alnum:]_.])[/](work|home|root)/'

if own_files '*' | xargs -r -d '\n' grep -HniIE -- "$elsewhere"; then
  echo "These lines point outside the repository."
  exit 1
fi
echo "No text points outside the repository."
