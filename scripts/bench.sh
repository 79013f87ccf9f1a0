#!/usr/bin/env bash
# Measures the release build against peers, in one run each, so that ratios hold although machines differ.
#   scripts/bench.sh             everything below, one after the other
#   scripts/bench.sh matching    the search for the best folder: processor time, against other means
#   scripts/bench.sh batches     copies and moves of thousands of files, against cp and mv
#   scripts/bench.sh startup     the time until kinsort --version has ended, against python3 -c pass
#   scripts/bench.sh scripts     a script's loop of a million lines, and a thousand calls, against dash
#   scripts/bench.sh dialog      the dialog until it stands there, against zenity --list; a million rows, completion
# A folder on the volume to measure can be given in KINSORT_BENCH_WORK (else the folder for temporary files).
set -euo pipefail
cd "$(dirname "$0")/.."

kinds=(matching batches startup scripts dialog)
case ${1-} in
  "") ;;
  matching | batches | startup | scripts | dialog) kinds=("$1") ;;
  -h | --help) sed -n '2,9s/^# \?//p' "$0"; exit 0 ;;
  *) echo "bench.sh: unknown argument $1 (see --help)" >&2; exit 2 ;;
esac

# The system's Python, not one of a version manager: its start is what is measured, its packages are what peers use.
python=/usr/bin/python3
scripts/setup.sh --with bench
scripts/build.sh release kinsort KinsortDialog bench_matching bench_dialog

matching() { KINSORT_PYTHON=$python build/release/obj/bench_matching; }
batches() {
  "$python" -B bench/batches.py build/release/bin/kinsort ${KINSORT_BENCH_WORK:+--work "$KINSORT_BENCH_WORK"}
}
dialog() {
  "$python" -B bench/dialog.py build/release/vel/command/Default/Kinsort
  build/release/obj/bench_dialog
}
scripts() { "$python" -B bench/scripts.py build/release/bin/kinsort; }
startup() { "$python" -B bench/startup.py build/release/bin/kinsort; }

echo "bench: $(nproc) cores, load $(cut -d' ' -f1 /proc/loadavg), $(uname -sm)"
echo "bench: wants a quiet machine: close what works, plug in; compare ratios, not seconds"
for kind in "${kinds[@]}"; do
  printf '\n== %s ==\n' "$kind"
  "$kind"
done
