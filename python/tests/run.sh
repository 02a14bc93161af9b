#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# run.sh tests|installed PYTHON BUILD: the tests over the package of a build tree; or installs that package as a user
# does, without a network, and runs the examples over it. Skipped, by 77, where Python lacks what that needs.
set -euo pipefail

kind=$1 python=$2 build=$3
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")

need() { # MODULE PACKAGE
  "$python" -c "import $1" 2>/dev/null && return
  echo "skipped: $python has no $1; install $2"
  exit 77
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PYTHONDONTWRITEBYTECODE=1

if [[ $kind == tests ]]; then
  need pytest python3-pytest
  need numpy python3-numpy
  cd "$here"
  PYTHONPATH=$build/python "$python" -m pytest -q -p no:cacheprovider --basetemp "$scratch/tests" .
  exit
fi

need ensurepip python3-venv
need pandas python3-pandas
need matplotlib python3-matplotlib
# The environment sees Debian's numpy and pandas, and nothing of the build tree.
"$python" -m venv --system-site-packages "$scratch/environment"
installed=$scratch/environment/bin/python
"$installed" -m pip --disable-pip-version-check install --quiet --no-index --no-cache-dir \
  --config-settings "build=$build" "$here/.."
cd "$scratch"
where=$("$installed" -c 'import tavelor; print(tavelor.__file__)')
[[ $where == "$scratch"/environment/* ]] || { echo "tavelor comes from $where"; exit 1; }

compare() { # EXAMPLE EXPECTED ARGUMENT...
  local example=$1 expected=$2
  shift 2
  "$installed" "$here/../examples/$example.py" "$@" | diff -u "$expected" -
}
compare small_day "$here/../../examples/070-a-day.txt" "$scratch/small"  # as from everywhere else
export MPLCONFIGDIR=$scratch
compare five_questions "$here/../examples/five_questions.txt" "$scratch" "$scratch/five_questions.png"
[[ $(head -c 8 five_questions.png | od -An -c | tr -d ' \n') == '211PNG\r\n032\n' ]] || { echo "five_questions.png is no picture"; exit 1; }

"$installed" -m pip --disable-pip-version-check uninstall --quiet --yes tavelor
if "$installed" -c 'import tavelor' 2>/dev/null; then
  echo "tavelor is still there after it was taken away"
  exit 1
fi
echo "The installed package works."
