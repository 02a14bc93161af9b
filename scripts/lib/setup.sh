# SPDX-License-Identifier: MIT
# setup_machine [LIST...]: installs the Debian packages that are missing, those of more lists too, and does
# nothing when none is.
# shellcheck shell=bash

missing_packages() {
  local wanted
  wanted=$(grep -hEv '^(#|$)' scripts/lib/packages.txt "$@")
  # shellcheck disable=SC2086
  { dpkg-query -W -f '${db:Status-Abbrev} ${Package}\n' $wanted 2>/dev/null || true; } |
    awk -v wanted="$wanted" '
      $1 == "ii" { there[$2] = 1 }
      END { n = split(wanted, list, "\n"); for (i = 1; i <= n; i++) if (!(list[i] in there)) print list[i] }'
}

as_root() {
  if [[ $(id -u) -eq 0 ]]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo -n "$@" || sudo "$@"
  else
    echo "Run this as root, or install sudo: packages are missing." >&2
    return 1
  fi
}

apt() {
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=300 \
    -o Acquire::Retries=3 "$@" </dev/null
}

# Debian gives a newly installed server a cluster and starts it; the tests make their own. A server that
# is there is left as it is, and one that comes later gets its cluster.
no_cluster=/etc/postgresql-common/createcluster.d/tavelor.conf
without_cluster() {
  local status=0
  as_root mkdir -p "${no_cluster%/*}"
  as_root tee "$no_cluster" <<<'create_main_cluster = false' >/dev/null
  "$@" || status=$?
  as_root rm -f "$no_cluster"
  return $status
}

install_packages() {
  # The lists of a fresh machine are empty and those of an old one stale: fetch them only then.
  apt install -y --no-install-recommends "$@" >/dev/null 2>&1 || {
    apt update
    apt install -y --no-install-recommends "$@" >/dev/null
  }
}

setup_machine() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [[ ${#missing[@]} -eq 0 ]] && return 0
  if ! command -v apt-get >/dev/null; then
    echo "This is not a Debian machine. Install what stands for: ${missing[*]}" >&2
    return 1
  fi
  say "Installing ${missing[*]}"
  without_cluster install_packages "${missing[@]}"
}
