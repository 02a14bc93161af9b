#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# The pages of tavelor serve, made by npm from web/ into web/dist/, which the build then embeds. Run, it makes
# them and installs what that needs; sourced, it gives the functions.
[[ ${BASH_SOURCE[0]} != "$0" ]] || source "$(dirname "$0")/common.sh"

has_node() { command -v node >/dev/null && command -v npm >/dev/null; }

# The list of packages that a machine without Node needs for the pages, for setup_machine; else nothing.
pages_packages() {
  has_node || echo scripts/lib/packages-pages.txt
}

# What the pages are made from, as one sum: files and the program that makes them.
pages_stamp() {
  { node --version; own_files 'web/*' | grep -Ev '^web/(tests|node_modules|dist)/' |
    xargs -r -d '\n' sha256sum; } | sha256sum | cut -d' ' -f1
}

# build_pages: makes them where Node is there and something has changed since the last time.
build_pages() {
  if ! has_node; then
    echo "node and npm are not installed: the program gets the pages of the last time, or none"
    return 0
  fi
  local stamp
  stamp=$(pages_stamp)
  [[ -f web/dist/manifest.json && $(cat web/dist/stamp 2>/dev/null) == "$stamp" ]] && return 0
  say "Building the pages"
  install_pages_tools
  (cd web && npm run --silent check && npm run --silent build)
  echo "$stamp" >web/dist/stamp
}

# The tools of web/package-lock.json, where they are not those already.
install_pages_tools() {
  cmp -s web/package-lock.json web/node_modules/.tavelor-lock && return 0
  (cd web && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --silent --no-progress)
  cp web/package-lock.json web/node_modules/.tavelor-lock
}

if [[ ${BASH_SOURCE[0]} == "$0" ]]; then
  source scripts/lib/setup.sh
  mapfile -t lists < <(pages_packages)
  setup_machine "${lists[@]}"
  build_pages
fi
