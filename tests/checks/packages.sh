#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# packages.sh BUILD_DIR COMPILER: makes the Debian packages of what was built. lintian must find no error,
# each file must lie in one package only, the command must run with its manual and completion, Python must know
# its package, and programs must build on the unpacked development files with pkg-config alone: on the shared
# library, on the static one, on the flows, on the signatures and on the Qt adapter. By each of these ways a
# shop does the same small day, and prints the same. `scripts/package --bare` does it on a bare machine.
source "$(dirname "$0")/../../scripts/lib/common.sh"

build=$(realpath "$1") compiler=$2
if ! command -v dpkg-shlibdeps >/dev/null; then echo "dpkg-dev is missing"; exit 77; fi
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
(cd "$build" && cpack -B "$scratch/packages" >"$scratch/cpack.log" 2>&1) || { cat "$scratch/cpack.log"; exit 1; }
shopt -s nullglob
packages=("$scratch"/packages/*.deb)
names=(tavelor libtavelor1 libtavelor-c0 libtavelor-dev)
# As the build is: without Python's headers there is no module.
if [[ -d $build/python/tavelor ]]; then names+=(python3-tavelor); fi
for name in "${names[@]}"; do
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
cp tests/consumer/main.cpp tests/consumer/qt.cpp tests/consumer/signs.cpp examples/070-a-day.cpp \
  examples/080-a-till.cpp examples/090-a-day-in-c.c adapters/qt/examples/a_day.cpp "$scratch/programs"
cd "$scratch/programs"
compile() { "$compiler" -std=c++20 "$@"; }
# shellcheck disable=SC2046
{
  compile -c main.cpp $(pkg-config --cflags tavelor)
  compile main.o -o shared $(pkg-config --libs tavelor)
  compile main.o -o static $(pkg-config --libs tavelor-static)
  compile 080-a-till.cpp -o till $(pkg-config --cflags --libs tavelor-flows)
  compile -c 070-a-day.cpp $(pkg-config --cflags tavelor-flows)
  compile 070-a-day.o -o day-static $(pkg-config --libs tavelor-flows)
  compile 070-a-day.o -o day-shared $(pkg-config --libs tavelor-flows-shared)
  cc -std=c11 090-a-day-in-c.c -o day-in-c $(pkg-config --cflags --libs tavelor-c)
  compile signs.cpp -o signs $(pkg-config --cflags --libs tavelor-signing)
}
pkg-config --exists tavelor-sending tavelor-fiscal
# The Qt adapter, where it was built: on the shared library, and with the flows on the static one.
if [[ -s all_qt_headers.hpp ]]; then
  [[ $(field libtavelor-qt6-1 Depends) == *libtavelor1*libqt6widgets6* && $(field libtavelor-qt6-dev Depends) == *qt6-base-dev* ]]
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
for program in static day-static; do
  if ldd $program | grep libtavelor; then echo "$program needs the shared library"; exit 1; fi
done
for program in shared day-shared; do
  LD_LIBRARY_PATH=$libraries ldd $program | grep "libtavelor.so.1 => $libraries" >/dev/null
done
./static "$scratch/of-static"
./till | diff "$OLDPWD/examples/080-a-till.txt" -
[[ -n $(./signs) ]]

tree=$OLDPWD
day() { # WAY COMMAND...: the small day, in a folder of its own
  local way=$1
  shift
  mkdir "$scratch/day-$way"
  (cd "$scratch/day-$way" && LD_LIBRARY_PATH=$libraries PATH=$usr/bin:$PATH "$@") |
    diff "$tree/examples/070-a-day.txt" - || { echo "the small day differs: $way"; exit 1; }
}
day by-static ../programs/day-static
day by-shared ../programs/day-shared
day in-c ../programs/day-in-c
day by-command "$tree/examples/110-a-day-by-command.sh"
if [[ -d $build/python/tavelor ]]; then
  export PYTHONPATH=$usr/lib/python3/dist-packages PYTHONDONTWRITEBYTECODE=1
  day in-python /usr/bin/python3 "$tree/python/examples/small_day.py"
  [[ $(field python3-tavelor Depends) == *'libtavelor-c0 (= '*'python3 ('*'python3 (<< '* ]]
  LD_LIBRARY_PATH=$libraries /usr/bin/python3 - "$usr" <<'END'
import importlib.metadata, pathlib, sys, tavelor
library = next(line.split()[-1] for line in open("/proc/self/maps") if "libtavelor_c" in line)
for path in (tavelor.__file__, library):
    assert path.startswith(sys.argv[1]), f"{path} is not of the package"
assert "dist-packages" not in library, f"{library} is beside the module, and not that of its package"
assert importlib.metadata.version("tavelor") == tavelor.__version__
assert importlib.metadata.distribution("tavelor").read_text("INSTALLER").strip() == "dpkg"
assert {"py.typed", "__init__.pyi"} <= {path.name for path in pathlib.Path(tavelor.__file__).parent.iterdir()}
END
fi
printf '%s packages\n' "${#packages[@]}"
