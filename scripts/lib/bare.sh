# SPDX-License-Identifier: MIT
# Runs on the bare machine of scripts/package: installs each package with what it asks for and nothing
# else, and tries it.
# shellcheck shell=bash
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
cd /packages
install() { apt-get -qq -o Dpkg::Use-Pty=0 install -y --no-install-recommends "$@" >/dev/null; }
apt-get -qq update
dpkg-query -W -f '${Package}\n' | sort >before
printf '%s packages are there\n' "$(wc -l <before)"

install ./tavelor_*.deb
mkdir -p shops
tavelor new shops/shop
tavelor seed shops/shop --name 'Colmado Rius' --nif 12345678Z >/dev/null
tavelor day shops/shop | tail -n 12
tavelor recover shops/shop
[[ -s /usr/share/bash-completion/completions/tavelor ]]
# A bare machine drops manuals where its Debian is told to; ours are in the package.
dpkg -L tavelor | grep -q '/man1/tavelor-import-database.1.gz$'

install ./libtavelor1_*.deb
ldconfig -p | grep -q 'libtavelor.so.1 '

day() { # WAY COMMAND...: the small day, which prints the same from everywhere
  mkdir -p "of-$1"
  (cd "of-$1" && "${@:2}") | diff 070-a-day.txt -
}
day command ../110-a-day-by-command.sh
install ./libtavelor-c0_*.deb ./python3-tavelor_*.deb
day python python3 ../small_day.py
python3 -c 'import tavelor; help(tavelor.ClsBancos)' | grep CrearBanco >/dev/null
[[ -n $(compgen -G '/usr/lib/python3/dist-packages/tavelor/__pycache__/shop.cpython-*.pyc') ]]

install g++ pkg-config ./libtavelor-dev_*.deb
(cd /usr/include && find tavelor -name '*.hpp' -not -path 'tavelor/qt/*' | sort | sed 's/.*/#include "&"/') >all_headers.hpp
# shellcheck disable=SC2046
{
  g++ -std=c++20 main.cpp -o shared $(pkg-config --cflags --libs tavelor)
  g++ -std=c++20 080-a-till.cpp -o till $(pkg-config --cflags --libs tavelor-flows)
  g++ -std=c++20 070-a-day.cpp -o day-static $(pkg-config --cflags --libs tavelor-flows)
  g++ -std=c++20 070-a-day.cpp -o day-shared $(pkg-config --cflags --libs tavelor-flows-shared)
  gcc -std=c11 090-a-day-in-c.c -o day-in-c $(pkg-config --cflags --libs tavelor-c)
}
./shared shops/of-shared
(mkdir -p at && cd at && ../till) | diff 080-a-till.txt -
for way in static shared in-c; do day $way ../day-$way; done
# The others, as they are made.
for package in ./*.deb; do install "$package"; done

apt-get -qq -o Dpkg::Use-Pty=0 purge -y tavelor libtavelor1 libtavelor-c0 >/dev/null
left=$(find / -xdev -path /packages -prune -o -path /proc -prune -o -iname '*tavelor*' -print | grep -v '^/var/\(lib/dpkg\|cache\)' || true)
[[ -z $left ]] || { printf 'left behind:\n%s\n' "$left"; exit 1; }
echo "installed, tried and taken away"
