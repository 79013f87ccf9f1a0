#!/usr/bin/env bash
# Makes a file of texts as programs read it (UTF-16LE, byte-order mark, CR LF) from one as people edit it (UTF-8, LF).
#   scripts/encode_text.sh SOURCE TARGET
set -euo pipefail
[[ $# == 2 ]] || { sed -n '2,3s/^# \?//p' "$0" >&2; exit 2; }

# Under another name until it is complete: a build that is interrupted must not leave half a file that looks new.
mkdir -p "$(dirname "$2")"
trap 'rm -f "$2.part"' EXIT
{
  printf '\xFF\xFE'
  sed 's/\r*$/\r/' "$1" | iconv -f UTF-8 -t UTF-16LE
} >"$2.part" || { echo "encode_text.sh: $1 is not UTF-8" >&2; exit 1; }
mv -f "$2.part" "$2"
