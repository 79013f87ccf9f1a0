#!/usr/bin/env bash
# Takes the pictures of the documentation anew, in both languages, on a virtual display.
#   scripts/screenshots.sh            into docs/images
#   scripts/screenshots.sh FOLDER     into another folder
set -euo pipefail
cd "$(dirname "$0")/.."
case ${1-} in
  -h | --help) sed -n '2,4s/^# \?//p' "$0"; exit 0 ;;
esac

scripts/build.sh release kinsort KinsortDialog
/usr/bin/python3 -B scripts/screenshots/take.py build/release/bin/kinsort "${1-docs/images}"
