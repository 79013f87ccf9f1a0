"""The files that the checks look at, and how a check ends."""

import subprocess
import sys
from pathlib import Path

BACKENDS = ("src/platform/linux/", "src/platform/windows/", "src/ui/")
WORKSHOPS = ("tests/", "bench/", "fuzz/")  # outside the house: they may use every floor of it


def root():
    return Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()


def files(top, *suffixes):
    """Paths below `top`, relative, of what is tracked or could be: ignored files are left out."""
    listing = subprocess.run(
        ["git", "-C", str(top), "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
        capture_output=True)
    if listing.returncode != 0:
        sys.exit(f"{top}: git cannot list the files: {listing.stderr.decode().strip()}")
    names = sorted(set(filter(None, listing.stdout.decode().split("\0"))))
    return [n for n in names if n.endswith(suffixes or ("",)) and (top / n).is_file()]


def cpp_files(top):
    return files(top, ".h", ".cpp")


def lines(top, name):
    """(line number, text) of one file."""
    return enumerate((top / name).read_text(encoding="utf-8", errors="replace").splitlines(), 1)


def is_test(name):
    return name.endswith(("_test.cpp", "_test.h")) or name.startswith(WORKSHOPS)


def finish(faults):
    """Prints "file:line: what is wrong; what to do" for each fault and ends the program."""
    for name, line, message in faults:
        print(f"{name}:{line}: {message}")
    sys.exit(1 if faults else 0)
