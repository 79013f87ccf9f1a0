#!/usr/bin/env bash
# The long runs: whatever stops a batch, nothing may be lost. Stops at the first failure and says how to repeat it.
#   scripts/torture.sh [MINUTES]    how long (default 60): a quarter each for power cuts at every call of the engine,
#                                   kills of real sorts on disk, kills in memory, and the fuzzers
# Temporary trees go to $TMPDIR (/tmp). What the fuzzers learn is kept in build/torture.
set -euo pipefail
cd "$(dirname "$0")/.."

case ${1-} in
  -h | --help) sed -n '2,5s/^# \?//p' "$0"; exit 0 ;;
esac
minutes=${1-60}
[[ $minutes =~ ^[1-9][0-9]{0,4}$ && $# -le 1 ]] || {
  echo "torture.sh: say how many whole minutes, for example: scripts/torture.sh 60 (see --help)" >&2
  exit 2
}
quarter=$((minutes * 60 / 4))

step() { printf '\n== %s ==\n' "$*"; }
failed() {
  printf 'torture.sh: FAILED. Again: %s\n' "$*" >&2
  exit 1
}

step "building"
scripts/build.sh release kinsort Crash_test
fuzzers=(fuzz/*_fuzz.cpp)
fuzzers=("${fuzzers[@]##*/}")
fuzzers=("${fuzzers[@]%.cpp}")
scripts/build.sh fuzz "${fuzzers[@]}" JournalCorpus

# Rounds with more and more places to cut, until the time is over.
step "power cuts at every call, ${quarter} s"
until=$((SECONDS + quarter)) seeds=20
while ((SECONDS < until)); do
  command=(env KINSORT_TORTURE_SEEDS=$seeds build/release/obj/Crash_test --gtest_brief=1)
  echo "${command[*]}"
  "${command[@]}" || failed "${command[*]}"
  seeds=$((seeds * 2))
done

kill_sorts() {
  local command=(scripts/torture/kill_sorts.py build/release/bin/kinsort --kills 1000000 "$@")
  echo "${command[*]}"
  PYTHONDONTWRITEBYTECODE=1 "${command[@]}" || failed "as it says above"
}
share=$(awk "BEGIN { print $quarter / 60 }")
step "kills of sorts of 10,000 files on disk, ${quarter} s"
kill_sorts --minutes "$share" --files 10000 --work "${TMPDIR:-/tmp}"
step "kills of smaller sorts, in memory where there is room, ${quarter} s"
kill_sorts --minutes "$share" --files 100-3000

share=$((quarter / ${#fuzzers[@]} + 1))
for name in "${fuzzers[@]}"; do
  step "$name, $share s"
  corpus=build/torture/$name
  mkdir -p "$corpus"
  [[ $name != Journal_fuzz ]] || build/fuzz/obj/JournalCorpus "$corpus"
  build/fuzz/obj/"$name" -max_total_time="$share" -print_final_stats=1 -verbosity=0 \
    -artifact_prefix="$corpus-" "$corpus" ||
    failed "build/fuzz/obj/$name with the file it has written, $corpus-crash-... or the like"
done
printf '\ntorture: %s minutes, nothing lost\n' "$minutes"
