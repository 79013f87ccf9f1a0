#!/usr/bin/env bash
# Shows the main job on made-up files in a temporary folder: plan, sort, undo. Nothing is left behind.
#   scripts/demo/demo.sh PROGRAM
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
kinsort=$1

stage=$(mktemp -d "${TMPDIR:-/tmp}/kinsort-demo.XXXXXX")
trap 'rm -rf "$stage"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
export XDG_STATE_HOME=$stage/state
unset VEL_ExCommand
mkdir "$stage/Downloads" "$stage/Documents"
while IFS= read -r name; do mkdir "$stage/Documents/$name"; done <"$here/folders.txt"
while IFS= read -r name; do printf 'This is %s.\n' "$name" >"$stage/Downloads/$name"; done <"$here/items.txt"
cd "$stage"

say() { printf '\n# %s\n' "$@"; }
# show TYPED WORDS...: shows the command as it was typed and runs the program with what the shell makes of it.
show() {
  printf '$ kinsort %s\n' "$1"
  code=0
  "$kinsort" "${@:2}" || code=$?
}
count() { find "$1" -type f | wc -l; }

echo "# A folder Downloads with $(count Downloads) files, and Documents with $(find Documents -mindepth 1 -type d | wc -l) empty folders."
say "Which folder looks most like each file? Case, kana, width, digits and brackets do not matter."
show 'plan --to Documents --scores Downloads/*' plan --to Documents --scores Downloads/*
say "Move them. 12345.tmp shares nothing with any folder, so it stays, and the exit code says 1."
show 'sort --to Documents --move Downloads/*' sort --to Documents --move Downloads/*
printf '# exit code %d; Downloads now holds %d file, Documents %d.\n' "$code" "$(count Downloads)" "$(count Documents)"
say "Where they went:"
find Documents -type f | LC_ALL=C sort | sed 's/^/  /'
say "Think better of it. The batch is remembered, also after the program has ended."
show history history
show undo undo
printf '# exit code %d; Downloads holds %d files again, Documents %d.\n' "$code" "$(count Downloads)" "$(count Documents)"
