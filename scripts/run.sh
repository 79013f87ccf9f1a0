#!/usr/bin/env bash
# Builds Kinsort and runs it.
#   scripts/run.sh           shows the main job on made-up files in a temporary folder
#   scripts/run.sh ARGS...   runs "kinsort ARGS...", for example: scripts/run.sh plan --to ~/Pictures ~/Downloads/*
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/build.sh" release kinsort_installed
kinsort=$root/build/release/bin/kinsort
(($#)) || exec "$root/scripts/demo/demo.sh" "$kinsort"
exec "$kinsort" "$@"
