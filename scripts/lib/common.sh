# SPDX-License-Identifier: MIT
# Shared by all scripts: source it. It moves to the root of the repository.
# shellcheck shell=bash
set -euo pipefail

export LC_ALL=C.UTF-8
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

# The compiler cache lives in the home folder; where there is none to write to, beside the build.
[[ -n ${HOME:-} && -w $HOME ]] || export CCACHE_DIR=${CCACHE_DIR:-$PWD/build/ccache}

cores() { nproc 2>/dev/null || echo 2; }

say() { printf '\n== %s\n' "$*"; }

# Files of the repository that match the given patterns: tracked ones and new ones that are not
# ignored. A copy that is no git checkout is searched as a folder.
own_files() {
  if git -c safe.directory='*' rev-parse --git-dir >/dev/null 2>&1; then
    git -c safe.directory='*' ls-files --cached --others --exclude-standard -- "$@"
  else
    local names=() pattern
    for pattern in "$@"; do names+=(-o -path "./$pattern"); done
    find . \( -path ./build -o -path ./.git \) -prune -o -type f \( "${names[@]:1}" \) -print |
      cut -c3-
  fi | LC_ALL=C sort -u | while IFS= read -r file; do
    if [[ -f $file ]]; then printf '%s\n' "$file"; fi # not what was deleted but is still tracked
  done
}

# The C++ and C files that we write.
own_sources() { own_files '*.cpp' '*.hpp' '*.c' '*.h'; }

# build_preset PRESET [TARGET...]: configures when needed, then builds.
build_preset() {
  local preset=$1 target
  shift
  local targets=()
  for target in "$@"; do targets+=(--target "$target"); done
  cmake --preset "$preset" -Wno-dev --log-level=WARNING >/dev/null &&
    cmake --build --preset "$preset" --parallel "$(cores)" "${targets[@]}"
}
