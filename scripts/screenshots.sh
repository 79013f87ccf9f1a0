#!/usr/bin/env bash
# Takes the pictures of the documentation anew, in both languages, on a virtual display.
#   scripts/screenshots.sh            into docs/images
#   scripts/screenshots.sh FOLDER     into another folder
set -euo pipefail
cd "$(dirname "$0")/.."
case ${1-} in
  -h | --help) sed -n '2,4s/^# \?//p' "$0"; exit 0 ;;
esac

scripts/setup.sh
log=$(mktemp)
trap 'rm -f "$log"' EXIT
{ cmake --preset release && cmake --build --preset release --target kinsort KinsortDialog; } >"$log" 2>&1 || {
  cat "$log" >&2
  echo "screenshots.sh: the build failed, see above" >&2
  exit 1
}
/usr/bin/python3 -B scripts/screenshots/take.py build/release/bin/kinsort "${1-docs/images}"
