#!/usr/bin/env bash
# What a machine can see of the house rules. Every check says file:line, what is wrong and what to do about it.
#   scripts/check.sh           all checks, and the proof that each of them still catches its fault
#   scripts/check.sh --tidy    the same, then clang-tidy over every source (minutes)
set -euo pipefail
cd "$(dirname "$0")/.."

tidy=0
case ${1-} in
  "") ;;
  --tidy) tidy=1 ;;
  -h | --help) sed -n '2,4s/^# \?//p' "$0"; exit 0 ;;
  *) echo "check.sh: unknown argument $1 (see --help)" >&2; exit 2 ;;
esac

scripts/setup.sh
export PYTHONDONTWRITEBYTECODE=1
failed=0
run() {
  echo "check: $*"
  "$@" || failed=1
}
run scripts/checks/self_test.py
for check in arrows headers orphans names words format; do
  run "scripts/checks/$check.py" .
done
if ((tidy)); then
  cmake --preset dev >/dev/null
  run run-clang-tidy -quiet -p build/dev -j "$(nproc)" "$PWD/src/.*\.cpp"
fi
((failed == 0)) || { echo "check: FAILED, see above" >&2; exit 1; }
echo "check: all good"
