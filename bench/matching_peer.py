#!/usr/bin/env python3
"""A best match by other means, for comparison: for each name the choice with the highest similarity ratio.

Usage: matching_peer.py FILES FOLDERS, two UTF-8 texts with one name per line (file names already sampled).
Prints one line per method: method, names, seconds for all of them.

- levenshtein: the highest Levenshtein.ratio (python3-levenshtein, C code) over all choices;
- difflib: difflib.get_close_matches(name, choices, n=1, cutoff=0.1), Python's own.
Both look at the whole names as they are (lower case only); they answer a similar question, not the same one.
"""
import difflib
import sys
import time


def read(path):
    with open(path, encoding="utf-8", errors="replace") as text:
        return [line.rstrip("\n").lower() for line in text]


def measure(method, names, pick):
    start = time.process_time()
    for name in names:
        pick(name)
    print(method, len(names), f"{time.process_time() - start:.6f}", flush=True)


def main():
    names, choices = read(sys.argv[1]), read(sys.argv[2])
    try:
        from Levenshtein import ratio
    except ImportError:
        print("levenshtein is not installed", file=sys.stderr)
    else:
        measure("levenshtein", names[:20], lambda name: max(choices, key=lambda choice: ratio(name, choice)))
    measure("difflib", names[:3], lambda name: difflib.get_close_matches(name, choices, n=1, cutoff=0.1))


if __name__ == "__main__":
    main()
