#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_and_consume.sh BUILD_DIR COMPILER BUILD_TYPE: installs to a scratch folder, then builds
# and runs tests/consumer on both libraries, with all installed headers included and nothing of this
# tree; the till of the examples, on the flows; the small day, by the flows on both libraries and in C, which
# sees nothing but the C interface.
source "$(dirname "$0")/../../scripts/lib/common.sh"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$1" --prefix "$scratch/usr" >"$scratch/install.log"
cp -r tests/consumer "$scratch/consumer"
cp examples/080-a-till.cpp "$scratch/consumer/till.cpp"
cp examples/070-a-day.cpp "$scratch/consumer/day.cpp"
# Those of the Qt adapter want Qt.
list_headers() { (cd "$scratch/usr/include" && find tavelor -name '*.hpp' "$@" | LC_ALL=C sort | sed 's/.*/#include "&"/'); }
list_headers -not -path 'tavelor/qt/*' >"$scratch/consumer/all_headers.hpp"
list_headers -path 'tavelor/qt/*' >"$scratch/consumer/all_qt_headers.hpp"
cmake -S "$scratch/consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/usr" \
  -DCMAKE_CXX_COMPILER="$2" -DCMAKE_BUILD_TYPE="$3" --log-level=WARNING
cmake --build "$scratch/build"
built=0
for program in "$scratch"/build/with_*; do
  LD_LIBRARY_PATH=$(find "$scratch/usr" -name 'libtavelor.so' -printf '%h') \
    "$program" "$scratch/shop-of-${program##*/}"
  built=$((built + 1))
done
[[ $built -gt 0 ]]
(cd "$scratch" && build/till | diff "$OLDPWD/examples/080-a-till.txt" -)
for program in "$scratch"/build/day_by_*; do
  mkdir "$scratch/${program##*/}"
  (cd "$scratch/${program##*/}" && LD_LIBRARY_PATH=$(find "$scratch/usr" -name 'libtavelor.so' -printf '%h') "$program") |
    diff examples/070-a-day.txt -
done
# A project in C, and a line of the compiler.
libraries=$(find "$scratch/usr" -name 'libtavelor_c.so' -printf '%h')
if [[ -n $libraries ]]; then
  cp -r tests/consumer/c "$scratch/in_c"
  cp examples/090-a-day-in-c.c "$scratch/in_c/day.c"
  cmake -S "$scratch/in_c" -B "$scratch/build_c" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/usr" --log-level=WARNING
  cmake --build "$scratch/build_c"
  PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --print-errors --exists tavelor-c
  read -r -a flags < <(PKG_CONFIG_PATH=$libraries/pkgconfig pkg-config --cflags --libs tavelor-c)
  # The sanitizers of a build are not in its installed files.
  "${CC:-cc}" -std=c11 -Wall -Wextra -Wpedantic -Werror "$scratch/in_c/day.c" "${flags[@]}" -o "$scratch/build_c/by_hand"
  for program in day by_hand; do
    mkdir "$scratch/day_of_$program"
    (cd "$scratch/day_of_$program" && LD_LIBRARY_PATH=$libraries "$scratch/build_c/$program") |
      diff examples/070-a-day.txt -
  done
fi
if [[ -x $scratch/usr/bin/tavelor ]]; then "$scratch/usr/bin/tavelor" --version; fi
