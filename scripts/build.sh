#!/usr/bin/env bash
# Builds programs without a word; when that fails, everything that was said.
#   scripts/build.sh PRESET TARGET...
set -euo pipefail
cd "$(dirname "$0")/.."
(($# >= 2)) || { sed -n '2,3s/^# \?//p' "$0" >&2; exit 2; }

scripts/setup.sh >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
trap 'exit 130' INT
{ cmake --preset "$1" && cmake --build --preset "$1" --target "${@:2}"; } >"$log" 2>&1 || {
  cat "$log" >&2
  echo "build.sh: the build failed, see above" >&2
  exit 1
}
