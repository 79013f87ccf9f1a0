#!/usr/bin/env python3
"""How long the dialog takes until it stands there with 100 items, against zenity --list with the same rows, in turn on
one virtual display; and how much memory it keeps. Then 100,000 items that are sorted into 1,000 folders, until their
candidates are seen, against the dialog with ten items and the command line's plan of the same work. Watched is the display's own memory: the time counts from the start
of the program to the first moment at which the picture is what it stays.

usage: dialog.py KINSORT_DIALOG [RUNS]
"""

import contextlib
import mmap
import os
import signal
import statistics
import struct
import subprocess
import sys
import tempfile
import time

RUNS = 15
ITEMS = 100
FOLDERS = 20
QUIET_SECONDS = 0.8  # so long nothing changes: the picture is done
GIVE_UP_SECONDS = 20
MANY_ITEMS, MANY_FOLDERS, MANY_RUNS = 100_000, 1_000, 5
LETTERS = "bcdfghklmnprstvz"
ALIKE = 0.97  # of the lines: a blinking caret does not count


class Display:
    """A virtual screen whose picture is a file that programs on it draw into."""

    def __init__(self, stage):
        folder = os.path.join(stage, "screen")
        os.mkdir(folder)
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-fbdir", folder, "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        self.name = ":" + os.read(read, 16).decode().strip()
        with open(os.path.join(folder, "Xvfb_screen0"), "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        header = struct.unpack(">25I", self.memory[:100])
        self.start = header[0] + header[19] * 12  # the file's header and its table of colours
        self.line = header[12]
        self.height = header[5]

    def picture(self):
        return self.memory[self.start:self.start + self.line * self.height]

    def close(self):
        self.server.terminate()
        self.server.wait()

    def alike(self, one, other, blank):
        """How much of what was drawn is the same in both."""
        drawn = same = 0
        for at in range(0, self.line * self.height, self.line):
            line = other[at:at + self.line]
            if line != blank[at:at + self.line]:
                drawn += 1
                same += line == one[at:at + self.line]
        return same / drawn if drawn else 0


def start_to_picture(display, command, environment):
    """Seconds until the picture stood there, and the memory of the process in kB: resident, and its own alone."""
    blank = display.picture()
    begun = time.perf_counter()
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    seen, last, changed = [], blank, begun
    while last == blank or time.perf_counter() - changed < QUIET_SECONDS:
        if time.perf_counter() - begun > GIVE_UP_SECONDS:
            raise SystemExit(f"dialog.py: {command[0]} draws nothing")
        now, picture = time.perf_counter(), display.picture()
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
    while display.picture() != blank:
        time.sleep(0.01)
    took = next(at for at, picture in seen if display.alike(picture, last, blank) >= ALIKE) - begun
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


def word(number):
    """A word of its own for every number: matching must be sure where each file goes."""
    return "".join(LETTERS[(number >> shift) & 15] + "aeio"[(number >> (shift + 4)) & 3] for shift in (0, 6, 12))


def many(display, dialog, stage, environment):
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
        return start_to_picture(display, [dialog, os.path.join(top, "to")], environment)[0]

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
        environment = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", "NO_AT_BRIDGE": "1", "HOME": stage}
        for name in ("XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME"):
            environment[name] = os.path.join(stage, name)
            os.mkdir(environment[name], 0o700)
        for number in range(FOLDERS):
            os.makedirs(os.path.join(stage, "to", f"Project {chr(65 + number)} papers"))
        os.mkdir(os.path.join(stage, "in"))
        items = [os.path.join(stage, "in", f"project {chr(65 + i % FOLDERS)} paper {i}.pdf") for i in range(ITEMS)]
        for item in items:
            open(item, "w").close()
        rows = [text for i, item in enumerate(items)
                for text in (os.path.basename(item), f"Project {chr(65 + i % FOLDERS)} papers")]
        display = Display(stage)
        stack.callback(display.close)
        environment["DISPLAY"] = display.name
        commands = {
            "Kinsort": [dialog, os.path.join(stage, "to")],
            "zenity --list": ["zenity", "--list", "--width=600", "--height=600", "--column=File", "--column=Target",
                              *rows],
        }
        results = {name: [] for name in commands}
        for run in range(runs + 2):
            for name, command in commands.items():
                environment["VEL_ExCommand"] = hand_off(environment["XDG_RUNTIME_DIR"], items)
                result = start_to_picture(display, command, environment)
                if run >= 2:  # the first runs fill caches
                    results[name].append(result)
        report(results, runs)
        many(display, dialog, stage, environment)


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
