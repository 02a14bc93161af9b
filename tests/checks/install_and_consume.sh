#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# install_and_consume.sh BUILD_DIR COMPILER BUILD_TYPE: installs to a scratch folder, then builds
# and runs tests/consumer on both libraries, with all installed headers included and nothing of this tree.
source "$(dirname "$0")/../../scripts/lib/common.sh"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cmake --install "$1" --prefix "$scratch/usr" >"$scratch/install.log"
cp -r tests/consumer "$scratch/consumer"
(cd "$scratch/usr/include" && find tavelor -name '*.hpp' | LC_ALL=C sort |
  sed 's/.*/#include "&"/') >"$scratch/consumer/all_headers.hpp"
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
if [[ -x $scratch/usr/bin/tavelor ]]; then "$scratch/usr/bin/tavelor" --version; fi
