#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# snippets.sh check|write: pages show pieces of the examples. Such a block follows a line
#     <!-- snippet: examples/010-first-steps.cpp first-steps -->
# and must equal what stands between the two lines "// [first-steps]" of that file, moved to the
# left margin. "check" names the blocks that differ, "write" puts the pieces into the pages.
source "$(dirname "$0")/../scripts/lib/common.sh"

action=${1:-check}
status=0
count=0
while IFS= read -r page; do
  fresh=$(mktemp)
  awk -v page="$page" '
    function piece(file, name,    line, inside, indent, text) {
      text = ""; inside = 0; indent = -1
      while ((getline line < file) > 0) {
        if (line ~ "^ *// \\[" name "\\] *$") { inside = !inside; continue }
        if (!inside) continue
        if (indent < 0) { match(line, /^ */); indent = RLENGTH }
        text = text (line == "" ? "" : substr(line, indent + 1)) "\n"
      }
      close(file)
      if (text == "") { print page ": " file " has no piece " name > "/dev/stderr"; exit 1 }
      return text
    }
    /^<!-- snippet: / { print; source = $3; name = $4; wanted = 1; next }
    wanted && /^```/ { print; printf "%s", piece(source, name); wanted = 0; skipping = 1; next }
    skipping && /^```/ { skipping = 0 }
    skipping { next }
    { print }' "$page" >"$fresh"
  count=$((count + $(grep -c '^<!-- snippet: ' "$page" || true)))
  if ! cmp -s "$page" "$fresh"; then
    if [[ $action == write ]]; then
      cp "$fresh" "$page"
    else
      diff -u "$page" "$fresh" || true
      status=1
    fi
  fi
  rm -f "$fresh"
done < <(own_files '*.md')
[[ $status -eq 0 ]] && echo "$count pieces of examples stand in the pages."
exit $status
