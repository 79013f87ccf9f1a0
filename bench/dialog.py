#!/usr/bin/env python3
"""How long the dialog takes until it stands there with 100 items, against zenity --list with the same rows, in turn on
one screen that nobody sees; and how much memory it keeps. Then 100,000 items that are sorted into 1,000 folders, until
their candidates are seen, against the dialog with ten items and the command line's plan of the same work. Watched is the
screen's own memory: the time counts from the start of the program to the first moment at which the picture is what it
stays.

usage: dialog.py KINSORT_DIALOG [RUNS]
"""

import contextlib
import os
import signal
import statistics
import subprocess
import sys
import tempfile
import time

from batches import word

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "../scripts/screenshots"))
from screen import Screen, environment_below

RUNS = 15
ITEMS = 100
FOLDERS = 20
QUIET_SECONDS = 0.8  # so long nothing changes: the picture is done
GIVE_UP_SECONDS = 20
MANY_ITEMS, MANY_FOLDERS, MANY_RUNS = 100_000, 1_000, 5
ALIKE = 0.97  # of the lines: a blinking caret does not count


def alike(screen, one, other):
    """How much of what was drawn is the same in both."""
    drawn = same = 0
    for mine, its, blank in zip(screen.lines(one), screen.lines(other), screen.lines(screen.blank)):
        if its != blank:
            drawn += 1
            same += its == mine
    return same / drawn if drawn else 0


def start_to_picture(screen, command, environment):
    """Seconds until the picture stood there, and the memory of the process in kB: resident, and its own alone."""
    begun = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    seen, last, changed = [], screen.blank, begun
    while last == screen.blank or time.perf_counter() - changed < QUIET_SECONDS:
        if time.perf_counter() - begun > GIVE_UP_SECONDS:
            raise SystemExit(f"dialog.py: {command[0]} draws nothing")
        now, picture = time.perf_counter(), screen.picture()
        if picture != last:
            seen.append((now, picture))
            last, changed = picture, now
        time.sleep(0.0005)
    memory = {}
    with open(f"/proc/{process.pid}/smaps_rollup") as file:
        for row in file:
            fields = row.split()
            if fields[0] in ("Rss:", "Private_Clean:", "Private_Dirty:"):
                memory[fields[0]] = int(fields[1])
    process.send_signal(signal.SIGTERM)
    process.wait()
    while screen.picture() != screen.blank:
        time.sleep(0.01)
    took = next(at for at, picture in seen if alike(screen, picture, last) >= ALIKE) - begun
    return took, memory["Rss:"], memory["Private_Clean:"] + memory["Private_Dirty:"]


def inner(path):
    return "Z:" + path.replace("/", "\\")


def hand_off(runtime, items):
    """Plays the file manager: the block with the items, and what the program finds it by."""
    folder = os.path.join(runtime, "vel")
    os.makedirs(folder, mode=0o700, exist_ok=True)
    fields = [str(len(items)), "0", "Z:\\", ""] + [inner(item) for item in items]
    block = ("\t".join(fields) + "\t\0").encode("utf-16-le")
    file = os.open(os.path.join(folder, "ShareMem_1_1"), os.O_CREAT | os.O_WRONLY | os.O_TRUNC, 0o600)
    with os.fdopen(file, "wb") as out:
        out.write(block)
    return f"0:0:1:1:{len(block)}:0:0:0:Share:0"


def many(screen, dialog, stage, environment):
    """Prints the ratio for many items."""
    top = os.path.join(stage, "many")
    names = [word(i * 37 + 5) for i in range(MANY_FOLDERS)]
    for name in names:
        os.makedirs(os.path.join(top, "to", name))
    os.mkdir(os.path.join(top, "in"))
    items = [os.path.join(top, "in", f"{names[i * 7 % MANY_FOLDERS]} {i:06}.bin") for i in range(MANY_ITEMS)]
    for item in items:
        open(item, "w").close()
    listing = os.path.join(top, "list")
    with open(listing, "w") as out:
        out.write("\0".join(items))
    kinsort = os.path.join(os.path.dirname(dialog), "../../../bin/kinsort")
    plan = [kinsort, "plan", "--quiet", "--to", os.path.join(top, "to"), "--files-from", listing]

    def shown(count):
        environment["VEL_ExCommand"] = hand_off(environment["XDG_RUNTIME_DIR"], items[:count])
        return start_to_picture(screen, [dialog, os.path.join(top, "to")], environment)[0]

    def planned():
        begun = time.perf_counter()
        subprocess.run(plan, env=environment, stdout=subprocess.DEVNULL, check=True)
        return time.perf_counter() - begun

    taken = [(shown(MANY_ITEMS), shown(10), planned()) for _ in range(MANY_RUNS)]
    all_items, ten, plans = (statistics.median(run[i] for run in taken) * 1e3 for i in range(3))
    print(f"{MANY_ITEMS:,} items, {MANY_FOLDERS:,} folders: {all_items:.0f} ms; with 10 items {ten:.0f} ms, the plan "
          f"alone {plans:.0f} ms; ratio {all_items / (ten + plans):.2f}")


def main():
    dialog = os.path.abspath(sys.argv[1])
    runs = int(sys.argv[2]) if len(sys.argv) > 2 else RUNS
    with tempfile.TemporaryDirectory(prefix="kinsort-bench-") as stage, contextlib.ExitStack() as stack:
        environment = environment_below(stage)
        for number in range(FOLDERS):
            os.makedirs(os.path.join(stage, "to", f"Project {chr(65 + number)} papers"))
        os.mkdir(os.path.join(stage, "in"))
        items = [os.path.join(stage, "in", f"project {chr(65 + i % FOLDERS)} paper {i}.pdf") for i in range(ITEMS)]
        for item in items:
            open(item, "w").close()
        rows = [text for i, item in enumerate(items)
                for text in (os.path.basename(item), f"Project {chr(65 + i % FOLDERS)} papers")]
        screen = stack.enter_context(contextlib.closing(Screen()))
        environment["DISPLAY"] = screen.name
        commands = {
            "Kinsort": [dialog, os.path.join(stage, "to")],
            "zenity --list": ["zenity", "--list", "--width=600", "--height=600", "--column=File", "--column=Target",
                              *rows],
        }
        results = {name: [] for name in commands}
        for run in range(runs + 2):
            for name, command in commands.items():
                environment["VEL_ExCommand"] = hand_off(environment["XDG_RUNTIME_DIR"], items)
                result = start_to_picture(screen, command, environment)
                if run >= 2:  # the first runs fill caches
                    results[name].append(result)
        report(results, runs)
        many(screen, dialog, stage, environment)


def report(results, runs):
    print(f"{ITEMS} rows, {runs} runs in turn: milliseconds until they are drawn, median (middle half); memory in MB")
    for name, taken in results.items():
        quarter, median, three_quarters = (at * 1e3 for at in statistics.quantiles([t[0] for t in taken], n=4))
        resident, own = (statistics.median(t[i] for t in taken) / 1024 for i in (1, 2))
        print(f"{name:<14} {median:6.1f}  ({quarter:.1f} to {three_quarters:.1f})   "
              f"resident {resident:.1f}, of which its own {own:.1f}")
    mine, peer = (statistics.median(t[0] for t in taken) for taken in results.values())
    print(f"ratio {mine / peer:.2f}")


if __name__ == "__main__":
    main()
