#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# exported_symbols.sh LIBRARY: the shared library shows what its public headers tell of, and nothing
# else: all of it in the namespace, nothing of engines, of the dialect or of the inner rooms.
source "$(dirname "$0")/../../scripts/lib/common.sh"
source tests/checks/headers.sh

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
nm -D --defined-only "$1" | cut -d' ' -f3 >"$scratch/symbols"
# The classes that symbols belong to, as "Class" or "engine::Class".
c++filt <"$scratch/symbols" | grep -oE '^[^(]*tavelor::(dialect|engine|engine::sqlite|engine::postgres)?(::)?[A-Za-z]+::' |
  sed -E 's/.*tavelor:://; s/::$//' | LC_ALL=C sort -u >"$scratch/shown"

# classes_of HEADER...: what they define.
classes_of() { sed -nE 's/^(class|struct) (TAVELOR_API )?([A-Z][A-Za-z]+)( final)?( : .*)?( \{)?$/\3/p' "$@"; }
public_headers | xargs sed -nE 's/^(class|struct) TAVELOR_API ([A-Za-z]+).*[^;]$/\2/p' |
  LC_ALL=C sort -u >"$scratch/public"
private_headers | while IFS= read -r header; do classes_of "$header"; done | LC_ALL=C sort -u |
  LC_ALL=C comm -23 - "$scratch/public" >"$scratch/private"

status=0
complain() {
  if [[ -n $2 ]]; then
    printf '%s:\n%s\n' "$1" "$(head -20 <<<"$2")" >&2
    status=1
  fi
}
complain "outside of the namespace" "$(grep -vE 'NK?7tavelor' "$scratch/symbols" || true)"
complain "of engines and of the dialect" "$(grep -E '7tavelor(7dialect|6engine(6sqlite|8postgres))' "$scratch/symbols" || true)"
complain "of inner rooms" "$(LC_ALL=C comm -12 "$scratch/shown" "$scratch/private")"
complain "not shown" "$(grep -iE '^cls' "$scratch/public" | LC_ALL=C comm -13 "$scratch/shown" -)"
echo "$(wc -l <"$scratch/symbols") symbols of $(wc -l <"$scratch/public") classes and their functions"
exit $status
