#!/usr/bin/env python3
"""Includes go down only: a folder of src/ knows the folders on lower floors, and nobody but main/ and tests knows a
backend."""

import re

import tree

# To add a folder: give it a floor. Folders of one floor do not know each other.
FLOORS = {
    "text": 0,
    "platform": 1,
    "framework": 2,
    "classify": 3, "fileop": 3, "hostlink": 3,
    "controls": 4, "script": 4,
    "app": 5,
    "ui": 6, "cli": 6,
    "main": 7,
}
BACKEND_FOLDERS = ("platform/linux", "platform/windows", "platform/fake", "ui")
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')


def backend(path):
    return next((b for b in BACKEND_FOLDERS if path.startswith(b + "/")), None)


def judge(name, included, top):
    """What is wrong with file `name` of src/ including `included`, or None."""
    home = name.removeprefix("src/")
    here, there = home.split("/")[0], included.split("/")[0]
    if "/" not in included or not (top / "src" / included).is_file():
        return f'"{included}" is no file below src/; write the path from src/'
    if there not in FLOORS or here not in FLOORS:
        return f"folder {there if there not in FLOORS else here} has no floor; give it one in scripts/checks/arrows.py"
    if backend(included) and backend(included) != backend(home):
        if here == "main" or tree.is_test(name):
            return None
        return (f'"{included}" is a backend, named in main/ and tests only; take its interface '
                "(or name a fixture of tests X_test.h)")
    if here != there and FLOORS[there] >= FLOORS[here]:
        word = "stands beside" if FLOORS[there] == FLOORS[here] else "lies above"
        return f'"{included}": {there}/ {word} {here}/; arrows go down only, move the shared piece down'
    return None


def main():
    top = tree.root()
    faults = []
    for name in tree.cpp_files(top):
        if not name.startswith("src/"):
            continue
        for number, text in tree.lines(top, name):
            match = INCLUDE.match(text)
            message = match and judge(name, match.group(1), top)
            if message:
                faults.append((name, number, message))
    tree.finish(faults)


if __name__ == "__main__":
    main()
