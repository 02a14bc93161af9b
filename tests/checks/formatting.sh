#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# All sources are as clang-format leaves them; ./scripts/format puts them right.
exec "$(dirname "$0")/../../scripts/format" --check
