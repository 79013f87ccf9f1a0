#!/usr/bin/env python3
"""Times whole batches of the command line against cp and mv, pair by pair, and prints the ratios.

Every run gets fresh trees, and nothing is deleted before the end: a file system that has just deleted files searches
long for free numbers when it creates some. Each peer is started once a folder, as a person would who knows where everything goes;
the sort also matches names, plans, keeps a journal and prepares its undo.

usage: batches.py KINSORT [--work FOLDER] [--runs N] [--only WORD]
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

LETTERS = "bcdfghklmnprstvz"


def word(number):
    """A word of its own for every number: matching must be sure where each file goes."""
    return "".join(LETTERS[(number >> shift) & 15] + "aeio"[(number >> (shift + 4)) & 3] for shift in (0, 6, 12))


class Tree:
    """`folders` empty folders and `files` files of `size` bytes whose names say to which folder they belong."""

    def __init__(self, base, folders, files, size):
        self.base = base
        self.source = os.path.join(base, "in")
        self.target = os.path.join(base, "out")
        os.makedirs(self.source)
        self.names = [word(i * 37 + 5) for i in range(folders)]
        for name in self.names:
            os.makedirs(os.path.join(self.target, name))
        block = os.urandom(size)
        self.items = []
        for i in range(files):
            path = os.path.join(self.source, f"{self.names[i * folders // files]} {i:06}.bin")
            with open(path, "wb") as out:
                out.write(block)
            self.items.append(path)
        self.list = os.path.join(base, "list")
        with open(self.list, "wb") as out:
            out.write(b"\0".join(os.fsencode(item) for item in self.items) + b"\0")
        os.sync()

    def peer_script(self, command):
        """One peer command a folder, as a shell script, so that the shell's own cost is small."""
        per_folder = {}
        for item in self.items:
            per_folder.setdefault(os.path.basename(item).split(" ")[0], []).append(item)
        path = os.path.join(self.base, "peer.sh")
        with open(path, "w") as out:
            for name, items in per_folder.items():
                quoted = " ".join(f"'{item}'" for item in items)
                out.write(f"{command} -t '{os.path.join(self.target, name)}' {quoted}\n")
        return path

    def one_folder_script(self, command):
        path = os.path.join(self.base, "peer.sh")
        with open(path, "w") as out:
            out.write(f"cd '{self.source}' && exec {command} . '{self.target}'\n")
        return path


def timed(arguments, environment=None):
    start = time.perf_counter()
    done = subprocess.run(arguments, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    seconds = time.perf_counter() - start
    if done.returncode != 0:
        sys.exit(f"{arguments[0]} failed: {done.stderr.decode()}")
    return seconds


def sort(kinsort, tree, mode, durability):
    environment = dict(os.environ, XDG_STATE_HOME=os.path.join(tree.base, "state"))
    return timed([kinsort, "sort", mode, f"--durability={durability}", "--to", tree.target, "--files-from", tree.list,
                  "--quiet"], environment)


def peer(tree, command, then_sync, one_folder):
    script = tree.one_folder_script(command) if one_folder else tree.peer_script(command)
    seconds = timed(["sh", script])
    return seconds + (timed(["sync", "-f", tree.target]) if then_sync else 0)


# name, folders, files, bytes, sort's mode, durability, peer, peer syncs, one folder, target
CASES = [
    ("copy 20,000 x 4 KiB, journal durable / cp -a -t", 200, 20000, 4096, "--copy", "journal", "cp -a", False, False, 0.50),
    ("copy 20,000 x 4 KiB, all durable / cp -a, sync -f", 200, 20000, 4096, "--copy", "content", "cp -a", True, False, 0.55),
    ("copy 200 x 20 MiB, all durable / cp -a, sync -f", 20, 200, 20 << 20, "--copy", "content", "cp -a", True, False, 0.60),
    ("move 20,000, journal durable / mv -t", 200, 20000, 4096, "--move", "journal", "mv", False, False, 0.60),
    ("copy 20,000 x 4 KiB, journal durable / one cp -a", 200, 20000, 4096, "--copy", "journal", "cp -a", False, True, None),
]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("kinsort")
    parser.add_argument("--work", default=None, help="folder on the volume to measure")
    parser.add_argument("--runs", type=int, default=9)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    kinsort = os.path.abspath(options.kinsort)
    work = tempfile.mkdtemp(prefix="kinsort-bench-", dir=options.work)
    try:
        measure(kinsort, work, options)
    finally:
        shutil.rmtree(work)


def measure(kinsort, work, options):
    print(f"{'batch':<52} {'kinsort s':>10} {'peer s':>8} {'ratio':>6} {'min-max':>11} {'target':>7}")
    for name, folders, files, size, mode, durability, command, syncs, one, target in CASES:
        if options.only not in name:
            continue
        pairs = []
        for run in range(options.runs + 1):
            base = tempfile.mkdtemp(dir=work)
            sides = [lambda tree: sort(kinsort, tree, mode, durability), lambda tree: peer(tree, command, syncs, one)]
            seconds = [0.0, 0.0]
            for side in (0, 1) if run % 2 == 0 else (1, 0):  # in turn, so that neither always comes second
                tree = Tree(os.path.join(base, "ab"[side]), folders, files, size)
                seconds[side] = sides[side](tree)
                if size > 1 << 20:  # few files that fill the memory: both sides begin with as much of it free
                    shutil.rmtree(tree.base)
                    os.sync()
            mine, theirs = seconds
            if run > 0:  # the first pair warms up
                pairs.append((mine / theirs, mine, theirs))
        pairs.sort()
        ratio, mine, theirs = pairs[len(pairs) // 2]
        print(f"{name:<52} {mine:>10.3f} {theirs:>8.3f} {ratio:>6.2f} {pairs[0][0]:>5.2f}-{pairs[-1][0]:<5.2f} "
              f"{'' if target is None else f'{target:.2f}':>7}", flush=True)


if __name__ == "__main__":
    main()
