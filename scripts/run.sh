#!/usr/bin/env bash
# Builds Kinsort and runs it.
#   scripts/run.sh           shows the main job on made-up files in a temporary folder
#   scripts/run.sh ARGS...   runs "kinsort ARGS...", for example: scripts/run.sh plan --to ~/Pictures ~/Downloads/*
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

log=$(mktemp)
trap 'rm -f "$log"' EXIT
trap 'exit 130' INT
(
  cd "$root"
  scripts/setup.sh
  cmake --preset release
  cmake --build --preset release --target kinsort
) >"$log" 2>&1 || {
  cat "$log" >&2
  echo "run.sh: the build failed, see above" >&2
  exit 1
}
rm -f "$log"

kinsort=$root/build/release/bin/kinsort
(($#)) || exec "$root/scripts/demo/demo.sh" "$kinsort"
exec "$kinsort" "$@"
