#!/usr/bin/env python3
"""Kills the real program at random moments of real sorts, recovers, and compares every byte.

A round makes a tree, starts a sort of it and kills it (SIGKILL, sometimes SIGINT). Every content must then still be
somewhere. Recovery is told to finish or to take back, and is itself killed now and then. At its end the tree must be
exactly what was asked for, and after an undo (killed, too, now and then) exactly what it was at first: names,
contents, modes, times.

The first failure ends the run, keeps its tree and says how to repeat the round.
"""

import argparse
import hashlib
import json
import os
import random
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time

WORD_LETTERS = ("bcdfghklmnprstvz", "aeiou"), ("かきくけこさしすせそたちつてと", "アイウエオマミムメモラリルレロ")


class Failure(Exception):
    pass


def read_tree(top):
    """{path below top: (kind and mode, time of change of files, content's checksum)}; names as bytes."""
    found = {}
    for folder, folders, files in os.walk(os.fsencode(top)):
        for name in folders + files:
            path = os.path.join(folder, name)
            info = os.lstat(path)
            checksum = None
            if stat.S_ISREG(info.st_mode):
                with open(path, "rb") as file:
                    checksum = hashlib.blake2b(file.read(), digest_size=16).digest()
            found[os.path.relpath(path, os.fsencode(top))] = (info.st_mode, checksum and info.st_mtime_ns, checksum)
    return found


def contents(*trees):
    return {entry[2] for tree in trees for entry in tree.values()} - {None}


def differences(found, wanted):
    lines = [f"  missing: {name!r}" for name in sorted(wanted.keys() - found.keys())]
    lines += [f"  too many: {name!r}" for name in sorted(found.keys() - wanted.keys())]
    both = sorted(found.keys() & wanted.keys())
    lines += [f"  not the same: {name!r}" for name in both if found[name] != wanted[name]]
    return f"{len(lines)} differences\n" + "\n".join(lines[:10])


class Round:
    """One tree, one sort with its policy, and everything that happens to them."""

    def __init__(self, options, seed, limits):
        self.random = random.Random(seed)
        self.kinsort, self.limits = options.kinsort, limits
        self.move = self.random.random() < 0.5
        self.durability = self.random.choice(["content", "journal"])
        self.conflict = self.random.choice(options.conflicts.split(","))
        self.folders = [tempfile.mkdtemp(prefix="kinsort-kill-", dir=options.work)]
        crossing = options.second and self.random.random() < 0.25
        if crossing:
            self.folders.append(tempfile.mkdtemp(prefix="kinsort-kill-", dir=options.second))
            self.random.shuffle(self.folders)
        self.source, self.target = (os.path.join(self.folders[i], name) for i, name in ((0, "in"), (-1, "out")))
        self.state = os.path.join(self.folders[0], "state")
        self.environment = dict(os.environ, XDG_STATE_HOME=self.state)
        self.environment.pop("VEL_ExCommand", None)
        few, many = options.files
        self.count = self.random.randint(few, many)
        self.name = (f"{'move' if self.move else 'copy'} of {self.count} files, {self.durability} durable, "
                     f"{self.conflict}" + (", to another volume" if crossing else ""))
        self.kill_all = not options.only_sorts
        self.kills_inside = 0

    # The tree.

    def word(self):
        first, second = self.random.choice(WORD_LETTERS)
        return "".join(self.random.choice(first) + self.random.choice(second) for _ in range(5))

    def write(self, path, size):
        with open(path, "wb") as file:
            file.write(self.random.randbytes(16 + size))
        os.chmod(path, self.random.choice([0o600, 0o644, 0o444, 0o755]))
        changed = 1_500_000_000_000_000_000 + self.random.randrange(10**17)
        os.utime(path, ns=(changed, changed))

    def build(self):
        """Makes the tree; notes it and what a finished sort has to make of it."""
        words = [self.word() for _ in range(self.random.choice([3, 30, 200]))]
        os.makedirs(self.source)
        for word in words:
            os.makedirs(os.path.join(self.target, word), exist_ok=True)
        self.items, goes_to = [], {}
        for number in range(self.count):
            word = self.random.choice(words)
            name = f"{word} {number:06}.dat"
            path = os.path.join(self.source, name)
            kind = self.random.random()
            if kind < 0.01:
                name = f"{word} {number:06}"
                path = os.path.join(self.source, name)
                os.makedirs(os.path.join(path, "deep"))
                for inner in "one.dat", "deep/two.dat":
                    self.write(os.path.join(path, inner), 100)
            else:
                self.write(path, int(2 ** self.random.uniform(0, 19 if kind < 0.02 else 13)))
                if self.random.random() < 0.2:
                    self.write(os.path.join(self.target, word, name), 500)
            self.items.append(path)
            goes_to[os.fsencode(name)] = os.fsencode(word)
        self.before = self.read()
        self.finished = dict(self.before)
        for path, entry in self.before.items():
            side, _, below = path.partition(b"/")
            item, _, rest = below.partition(b"/")
            if side == b"in" and item:
                self.settle(path, entry, goes_to[item], item, rest)
        self.known = contents(self.before)

    def settle(self, path, entry, folder, item, rest):
        """Notes where one item's file or folder is when the sort is finished."""
        place = b"out/" + folder + b"/" + item
        if place in self.before:
            if self.conflict == "skip":
                return
            if self.conflict == "keep-both":
                place = place.replace(b".dat", b" (2).dat")
        if self.move:
            del self.finished[path]
        self.finished[place + (b"/" + rest if rest else b"")] = entry

    def read(self):
        tree = {b"in/" + name: entry for name, entry in read_tree(self.source).items()}
        tree.update({b"out/" + name: entry for name, entry in read_tree(self.target).items()})
        return tree

    def read_own(self):
        """Without the files that are kept for undo."""
        return {name: entry for name, entry in self.read().items() if b"/.kinsort-" not in name}

    # The program.

    def run(self, *arguments, codes=(0,)):
        done = subprocess.run([self.kinsort, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=600)
        if done.returncode not in codes:
            raise Failure(f"kinsort {' '.join(arguments)} ended with {done.returncode}\n{done.stderr.decode()[:500]}")
        return done.stdout

    def history_state(self):
        rows = json.loads(self.run("history", "--json"))
        if len(rows) > 1:
            raise Failure(f"{len(rows)} batches in the history")
        return rows[0]["state"] if rows else None

    def journals_size(self):
        folder = os.path.join(self.state, "vel/undo")
        if not os.path.isdir(folder):
            return 0
        with os.scandir(folder) as entries:
            return sum(entry.stat().st_size for entry in entries if entry.is_file())

    def run_and_kill(self, kind, *arguments):
        """Kills the program at a random moment after it began to write its plan. Whether it was still running."""
        known = self.journals_size()
        running = subprocess.Popen([self.kinsort, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        while running.poll() is None and self.journals_size() <= known:
            time.sleep(0.0002)
        start = time.monotonic()
        case = kind, self.move, self.durability, len(self.folders)
        limit = self.limits.get(case, 1e-5)  # seconds for each file that such a run takes, as far as is known
        try:
            running.wait(self.random.random() * limit * self.count)
            self.limits[case] = (time.monotonic() - start) / self.count
            return False
        except subprocess.TimeoutExpired:
            self.polite = self.random.random() < 0.2
            running.send_signal(signal.SIGINT if self.polite else signal.SIGKILL)
            running.wait(60)
            self.limits[case] = limit * 1.5  # so that a machine that got slower is noticed
            return True

    # What must hold.

    def check_contents(self, when):
        lost = self.known - contents(self.read(), read_tree(self.state))
        if lost:
            raise Failure(f"{len(lost)} contents are lost {when}")

    def check_tree(self, when, *wanted):
        tree = self.read_own()
        everything = self.read().keys() | read_tree(self.state).keys()
        temporary = [name for name in everything if name.endswith((b".part", b".swap"))]
        if temporary:
            raise Failure(f"temporary files are left {when}: {temporary[:5]}")
        if tree not in wanted:
            raise Failure(f"the tree is wrong {when}: " + differences(tree, wanted[0]))

    def recover(self):
        """Until nothing is torn. Checks the tree when the first recovery was not killed."""
        was_killed = False
        for attempt in range(10):
            action = self.random.choice(["--finish", "--undo"])
            if self.kill_all and attempt < 3 and self.random.random() < 0.3:
                self.run_and_kill("recover", "recover", action, "--quiet")
                self.check_contents("after recovery was killed")
                was_killed = True
                if self.history_state() == "unfinished":
                    self.kills_inside += 1
                    continue
                return
            self.run("recover", action, "--quiet", codes=(0, 3))  # 3: nothing had been done that could be taken back
            self.check_contents("after the recovery")
            if self.history_state() == "unfinished":
                raise Failure(f"recover {action} ended well, and the batch is still unfinished")
            if not was_killed:
                self.check_tree(f"after recover {action}", self.finished if action == self.forward else self.before)
            return

    def undo(self):
        """Takes everything back, whatever it takes."""
        self.forward = "--undo"  # what brings the sort back after a torn undo
        self.finished = self.read_own()  # a sort that was stopped did less
        if self.kill_all and self.history_state() == "done" and self.random.random() < 0.5:
            self.run_and_kill("undo", "undo", "--quiet")
            if self.history_state() == "unfinished":
                self.kills_inside += 1
                self.check_contents("after undo was killed")
                self.recover()
        if self.history_state() == "done":
            self.run("undo", "--quiet", codes=(0, 3))  # 3: stopped before anything was done
        self.check_contents("after the undo")
        self.check_tree("after the undo", self.before)

    def play(self):
        """Returns whether the kill struck in the middle of the sort."""
        self.build()
        items = os.path.join(self.folders[0], "items")
        with open(items, "wb") as file:
            file.write(b"\0".join(os.fsencode(item) for item in self.items) + b"\0")
        mode = "--move" if self.move else "--copy"
        killed = self.run_and_kill("sort", "sort", mode, f"--durability={self.durability}",
                                   f"--on-conflict={self.conflict}",
                                   "--to", self.target, "--files-from", items, "--quiet")
        self.check_contents("after the kill")
        torn = self.history_state() == "unfinished"
        self.forward = "--finish"
        if torn:
            self.kills_inside += 1
            self.recover()
        elif not (killed and self.polite):
            self.check_tree("after a kill that left nothing torn", self.before, self.finished)
        self.undo()
        return torn

    def remove(self):
        for folder in self.folders:
            shutil.rmtree(folder)


def usable(folders):
    return [folder for folder in folders if os.path.isdir(folder) and os.access(folder, os.W_OK | os.X_OK)]


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kinsort", help="the program")
    parser.add_argument("--files", default="10000", help="files of a sort, or a range as 500-2000 (default: 10000)")
    parser.add_argument("--kills", type=int, default=100, help="rounds (default: 100)")
    parser.add_argument("--minutes", type=float, help="start no round after that many minutes")
    parser.add_argument("--seed", type=int, help="number of the first round; the next one has the next number")
    parser.add_argument("--conflicts", default="replace,replace,keep-both,skip", help="what to draw --on-conflict from")
    parser.add_argument("--only-sorts", action="store_true", help="kill no recovery and no undo")
    places = usable(["/dev/shm", tempfile.gettempdir(), os.path.expanduser("~")])
    parser.add_argument("--same", action="store_true", help="every round is the first one again")
    parser.add_argument("--work", default=places[0], help="folder on the volume to use (default: %(default)s)")
    options = parser.parse_args()
    few, _, many = options.files.partition("-")
    options.files = int(few), int(many or few)
    options.kinsort = os.path.abspath(options.kinsort)
    others = (place for place in places if os.stat(place).st_dev != os.stat(options.work).st_dev)
    options.second = next(others, None)  # for sorts that cross volumes
    if options.seed is None:
        options.seed = random.SystemRandom().randrange(10**6)
    return options


def main():
    options = read_options()
    until = time.monotonic() + 60 * options.minutes if options.minutes else float("inf")
    rounds, torn, kills_inside, files, limits = 0, 0, 0, 0, {}
    for number in range(options.kills):
        seed = options.seed + (0 if options.same else number)
        if time.monotonic() >= until:
            break
        play = Round(options, seed, limits)
        try:
            torn += play.play()
        except (Failure, subprocess.TimeoutExpired) as failure:
            again = f"--files {options.files[0]}-{options.files[1]} --conflicts {options.conflicts} --seed {seed} --same"
            print(f"kill_sorts: round {seed}, {play.name}: {failure}\n"
                  f"kill_sorts: its tree is kept: {' '.join(play.folders)}\n"
                  f"kill_sorts: the same round until it fails again (the moment of a kill is partly chance): "
                  f"{sys.argv[0]} {options.kinsort} {again}", file=sys.stderr)
            sys.exit(1)
        rounds, kills_inside, files = rounds + 1, kills_inside + play.kills_inside, files + play.count
        play.remove()
    print(f"kill_sorts: {rounds} sorts of {files} files from seed {options.seed}, {torn} torn by their kill; "
          f"{kills_inside} kills struck a sort, a recovery or an undo in the middle; nothing lost, doubled or left over"
          + ("" if options.second else "; no second volume here"))
    if kills_inside == 0:
        sys.exit("kill_sorts: no kill came in time, so nothing was tested; raise --files or --kills")


if __name__ == "__main__":
    main()
