#!/usr/bin/env bash
# Builds everything and runs the whole suite.
#   scripts/test.sh                  the everyday build
#   scripts/test.sh --preset NAME    another one: release, asan, tsan, clang
set -euo pipefail
cd "$(dirname "$0")/.."

preset=dev
while (($#)); do
  case $1 in
    --preset)
      [[ $# -ge 2 ]] || { echo "test.sh: --preset needs a name" >&2; exit 2; }
      preset=$2
      shift 2
      ;;
    -h | --help)
      sed -n '2,4s/^# \?//p' "$0"
      exit 0
      ;;
    *)
      echo "test.sh: unknown argument $1 (see --help)" >&2
      exit 2
      ;;
  esac
done

scripts/setup.sh
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset "$preset" >"$log" || { cat "$log"; exit 1; }
cmake --build --preset "$preset" -- --quiet
ctest --preset "$preset" --parallel "$(nproc)" --no-tests=error
