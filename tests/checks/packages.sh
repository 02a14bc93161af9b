#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# packages.sh BUILD_DIR COMPILER: makes the Debian packages of what was built. lintian must find no error,
# each file must lie in one package only, the command must run with its manual and completion, and
# programs must build on the unpacked development files with pkg-config alone: on the shared library, on
# the static one, on the flows, on the signatures and on the Qt adapter. `scripts/package --bare` does it on a bare machine.
source "$(dirname "$0")/../../scripts/lib/common.sh"

build=$1 compiler=$2
if ! command -v dpkg-shlibdeps >/dev/null; then echo "dpkg-dev is missing"; exit 77; fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$build" && cpack -B "$scratch/packages" >"$scratch/cpack.log" 2>&1) || { cat "$scratch/cpack.log"; exit 1; }
shopt -s nullglob
packages=("$scratch"/packages/*.deb)
for name in tavelor libtavelor1 libtavelor-c0 libtavelor-dev; do
  [[ -n $(compgen -G "$scratch/packages/${name}_*.deb") ]] || { echo "no package $name"; exit 1; }
done
if command -v lintian >/dev/null; then lintian --allow-root --fail-on error "${packages[@]}"; fi

for package in "${packages[@]}"; do
  dpkg -c "$package" | awk '$1 !~ /^d/ { print $6 }'
  dpkg -x "$package" "$scratch/root"
done | sort | uniq -d >"$scratch/twice"
[[ ! -s $scratch/twice ]] || { echo "in two packages:"; cat "$scratch/twice"; exit 1; }
field() { dpkg -f "$(compgen -G "$scratch/packages/$1_*.deb")" "$2"; }
[[ $(field tavelor Depends) == *libmdb3*libsqlite3-0* && $(field libtavelor-dev Depends) == *'libtavelor1 (= '* ]]
[[ $(field libtavelor1 Depends) != *libmdb3* ]]

usr=$scratch/root/usr
"$usr/bin/tavelor" new "$scratch/shop" >/dev/null
[[ $("$usr/bin/tavelor" -C "$scratch/shop" call ClsBancos CrearBanco "" "Banco de Ahorro") == 00001* ]]
"$usr/bin/tavelor" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' | while read -r command; do
  [[ -s $usr/share/man/man1/tavelor-$command.1.gz ]] || { echo "no manual of $command"; exit 1; }
done
"$usr/bin/tavelor" completion bash | cmp - "$usr/share/bash-completion/completions/tavelor"

libraries=$(dirname "$(find "$usr/lib" -name libtavelor.so)")
export PKG_CONFIG_PATH=$libraries/pkgconfig
mkdir "$scratch/programs"
# Those of the Qt adapter want Qt.
list_headers() { (cd "$usr/include" && find tavelor -name '*.hpp' "$@" | LC_ALL=C sort | sed 's/.*/#include "&"/'); }
list_headers -not -path 'tavelor/qt/*' >"$scratch/programs/all_headers.hpp"
list_headers -path 'tavelor/qt/*' >"$scratch/programs/all_qt_headers.hpp"
cp tests/consumer/qt.cpp adapters/qt/examples/a_day.cpp tests/consumer/main.cpp tests/consumer/signs.cpp examples/080-a-till.cpp examples/090-a-day-in-c.c "$scratch/programs"
cd "$scratch/programs"
compile() { "$compiler" -std=c++20 "$@"; }
# shellcheck disable=SC2046
{
  compile -c main.cpp $(pkg-config --cflags tavelor)
  compile main.o -o shared $(pkg-config --libs tavelor)
  compile main.o -o static $(pkg-config --libs tavelor-static)
  compile 080-a-till.cpp -o till $(pkg-config --cflags --libs tavelor-flows)
  cc -std=c11 090-a-day-in-c.c -o day $(pkg-config --cflags --libs tavelor-c)
  compile signs.cpp -o signs $(pkg-config --cflags --libs tavelor-signing)
}
pkg-config --exists tavelor-sending tavelor-fiscal
# The Qt adapter, where it was built: on the shared library, and with the flows on the static one.
if [[ -s all_qt_headers.hpp ]]; then
  [[ $(field libtavelor-qt6-1 Depends) == *libqt6widgets6*libtavelor1* && $(field libtavelor-qt6-dev Depends) == *qt6-base-dev* ]]
  read -r -a flags < <(pkg-config --cflags --libs tavelor-qt6)
  compile -fPIC qt.cpp -o with_qt "${flags[@]}"
  LD_LIBRARY_PATH=$libraries ./with_qt "$scratch/of-qt"
  read -r -a flags < <(pkg-config --cflags --libs tavelor-qt6-flows)
  compile -fPIC a_day.cpp -o qt_day "${flags[@]}"
  (mkdir day-in-qt && cd day-in-qt && ../qt_day) | diff "$OLDPWD/adapters/qt/examples/a_day.txt" -
fi
for needed in fmt pugixml sqlite3 utf8proc pq; do
  [[ " $(pkg-config --static --libs tavelor) " == *"-l$needed "* ]]
done
LD_LIBRARY_PATH=$libraries ./shared "$scratch/of-shared"
(mkdir day-in-c && cd day-in-c && LD_LIBRARY_PATH=$libraries ../day) | diff "$OLDPWD/examples/090-a-day-in-c.txt" -
ldd static | grep -q libtavelor && { echo "the static program needs the shared library"; exit 1; }
ldd shared | grep -q libtavelor.so.1
./static "$scratch/of-static"
./till | diff "$OLDPWD/examples/080-a-till.txt" -
[[ -n $(./signs) ]]
printf '%s packages\n' "${#packages[@]}"
