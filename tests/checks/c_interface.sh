#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# c_interface.sh LIBRARY: the C interface. Its header compiles alone as C11 and as C++; the library shows
# what the header tells and nothing else, under its name; each function is called by the tests in C; and
# what the header promises to those who were compiled before is still so, by the description in
# tavelor/c/tavelor.abi (skipped without abidw). scripts/c-abi writes that anew.
source "$(dirname "$0")/../../scripts/lib/common.sh"

library=$1
header=tavelor/c/tavelor.h
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0
complain() {
  printf '%s\n' "$*" >&2
  status=1
}

echo '#include <tavelor.h>' >"$scratch/alone.c"
for compiler in "cc -std=c11" "c++ -x c++ -std=c++11" "c++ -x c++ -std=c++20"; do
  # shellcheck disable=SC2086
  $compiler -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I tavelor/c -fsyntax-only "$scratch/alone.c" ||
    complain "$header does not compile alone with $compiler"
done

sed -n '/^TAVELOR_C_API/,/;$/p' $header | tr '\n' ' ' | sed 's/TAVELOR_C_API/\n&/g' | sed -n 's/[^(]*\(tavelor_[a-z0-9_]*\)(.*/\1/p' |
  LC_ALL=C sort >"$scratch/told"
nm -D --defined-only "$library" | cut -d ' ' -f 3 | LC_ALL=C sort >"$scratch/shown"
diff "$scratch/told" "$scratch/shown" || complain "The library shows (>) other functions than $header tells (<)."
abi=$(sed -n 's/^#define TAVELOR_ABI //p' $header)
readelf -d "$library" | grep -q "SONAME.*\[libtavelor_c\.so\.$abi\]" || complain "The library's name is not of TAVELOR_ABI $abi."
while read -r name; do
  grep -qw "$name" tests/c/*.c || complain "$name is called by no test in tests/c"
done <"$scratch/told"

if command -v abidiff >/dev/null; then
  ./scripts/c-abi "$scratch/now.abi"
  constants() { grep -o "<enumerator.*" "$1"; }
  # abidiff does not look at the numbers of constants.
  { abidiff tavelor/c/tavelor.abi "$scratch/now.abi" &&
    diff <(constants tavelor/c/tavelor.abi) <(constants "$scratch/now.abi"); } ||
    complain "The interface is another than tavelor/c/tavelor.abi describes. Where it has only grown, by functions," \
      "constants, and fields behind the old ones, ./scripts/c-abi describes it anew; else TAVELOR_ABI must be another too."
  grep -q "name='tavelor_abi'" "$scratch/now.abi" || complain "The description tells nothing."
else
  echo "abidiff is missing (abigail-tools): the ABI was not compared."
fi
[[ $status -eq 0 ]] && echo "$(wc -l <"$scratch/told") functions are as told."
exit $status
