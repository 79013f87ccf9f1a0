#!/usr/bin/env python3
"""Every source belongs to a target, and every test to something that ctest runs. Follows the CMake files
from the top, so a folder or an included file that nobody adds counts as missing."""

import posixpath
import re

import tree

CALL = re.compile(r"([A-Za-z_]\w*)\s*\(([^()]*)\)")


def calls(path):
    text = re.sub(r"#.*", "", path.read_text(encoding="utf-8"))
    return [(m.group(1).lower(), m.group(2).replace('"', "").split()) for m in CALL.finditer(text)]


def read_cmake(top, folder, name, sources):
    """Adds to `sources` {path: {commands that list it}} what the CMake file names; follows what it includes."""
    path = top / folder / name
    if not path.is_file():
        return
    for command, words in calls(path):
        here = {"${CMAKE_CURRENT_SOURCE_DIR}": ".", "${KINSORT_BACKEND}": "linux", "${CMAKE_SOURCE_DIR}": "/"}
        for i, word in enumerate(words):
            for variable, value in here.items():
                word = word.replace(variable, value)
            words[i] = posixpath.normpath(posixpath.join(folder, word) if not word.startswith("/") else word[1:] or ".")
        if command == "add_subdirectory" and words:
            read_cmake(top, words[0], "CMakeLists.txt", sources)
        elif command == "include" and words:
            included = words[0]
            read_cmake(top, folder, posixpath.relpath(included, folder or "."), sources)
        else:
            for word in words:
                sources.setdefault(word, set()).add(command)


def main():
    top = tree.root()
    sources = {}
    read_cmake(top, "", "CMakeLists.txt", sources)
    faults = []
    for name in tree.files(top, ".cpp"):
        if name not in sources:
            faults.append((name, 1, f"no target builds this file; list it in {posixpath.dirname(name)}/CMakeLists.txt"))
        elif name.endswith("_test.cpp") and "kinsort_test" not in sources[name]:
            faults.append((name, 1, "built, but no test runs it; list it in a kinsort_test()"))
    for name in tree.files(top, "_test.py", "_test.sh"):
        if name.startswith("tests/") and not {name, name.rsplit(".", 1)[0]} & sources.keys():
            faults.append((name, 1, f"ctest does not run it; name it in {posixpath.dirname(name)}/CMakeLists.txt"))
    tree.finish(faults)


if __name__ == "__main__":
    main()
