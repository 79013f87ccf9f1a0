#!/usr/bin/env python3
"""How long kinsort --version takes from start to end, against python3 -c pass: in turn, so that both meet the same
machine. Prints medians and the range of the middle half.

usage: startup.py KINSORT [RUNS]
"""

import os
import statistics
import subprocess
import sys
import time

RUNS = 300


def milliseconds(command):
    start = time.perf_counter()
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    return (time.perf_counter() - start) * 1e3


def main():
    kinsort = os.path.abspath(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else RUNS
    commands = {"kinsort --version": [kinsort, "--version"], "python3 -c pass": ["/usr/bin/python3", "-c", "pass"]}
    times = {name: [] for name in commands}
    for run in range(runs + 10):
        for name, command in commands.items():
            took = milliseconds(command)
            if run >= 10:  # the first runs fill caches
                times[name].append(took)
    print(f"{runs} runs in turn, milliseconds: median (middle half)")
    for name, taken in times.items():
        quarter, median, three_quarters = statistics.quantiles(taken, n=4)
        print(f"{name:<20} {median:6.2f}  ({quarter:.2f} to {three_quarters:.2f})")
    mine, peer = (statistics.median(taken) for taken in times.values())
    print(f"ratio {mine / peer:.2f}")


if __name__ == "__main__":
    main()
