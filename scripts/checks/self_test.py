#!/usr/bin/env python3
"""Proves each check: a small tree that is in order passes, and the same tree with one fault planted is named for it,
at the right line."""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent

SOUND = {
    "CMakeLists.txt": "add_subdirectory(src)\nadd_subdirectory(fuzz)\nadd_subdirectory(tests)\n",
    "tests/CMakeLists.txt": "foreach(name plan_test)\n  add_test(NAME ${name} COMMAND ${name}.py)\nendforeach()\n",
    "tests/plan_test.py": "",
    "fuzz/CMakeLists.txt": "include(${CMAKE_CURRENT_SOURCE_DIR}/a.cmake OPTIONAL)\n",
    "fuzz/a.cmake": "add_executable(a_fuzz A_fuzz.cpp)\n",
    "fuzz/A_fuzz.cpp": '#include <unistd.h>\n\n#include "cli/Verbs.h"\n',
    "src/CMakeLists.txt": "add_subdirectory(text)\nadd_subdirectory(platform/${KINSORT_BACKEND})\n",
    "src/text/CMakeLists.txt": "kinsort_library(text SOURCES Trim.cpp)\nkinsort_test(t SOURCES Trim_test.cpp)\n",
    "src/text/Trim.h": "#pragma once\n",
    "src/text/Trim.cpp": '#include "text/Trim.h"\n\n#include <string>\n',
    "src/text/Trim_test.cpp": '#include <gtest/gtest.h>\n\n#include "platform/linux/Files.h"\n',
    "src/platform/Files.h": "#pragma once\n",
    "src/platform/linux/CMakeLists.txt": "kinsort_library(linux\n  SOURCES Files.cpp)  # one\n",
    "src/platform/linux/Files.h":
        '#pragma once\n#ifdef __linux__\n#include <fcntl.h>\n#endif\n#include "platform/Files.h"\n',
    "src/platform/linux/Files.cpp": '#include "platform/linux/Files.h"\n',
    "src/classify/Plan.h": '#pragma once\n\n#include "platform/Files.h"\n',
    "src/fileop/Batch.h": "#pragma once\n\n#include <xxhash.h>\n",
    "src/cli/Verbs.h": '#pragma once\n\n#include "classify/Plan.h"\n',
    "src/main/Main.h": '#pragma once\n\n#include "platform/linux/Files.h"\n',
    "docs/page.md": "CopyFile( and <windows.h> may stand in a text.\n",
}

# (check, file, its text with the fault, what must be said)
FAULTS = [
    ("arrows", "src/text/Trim.h", '#pragma once\n#include "platform/Files.h"\n', "src/text/Trim.h:2: .*lies above"),
    ("arrows", "src/classify/Plan.h", '#include "fileop/Batch.h"\n', "src/classify/Plan.h:1: .*stands beside"),
    ("arrows", "src/cli/Verbs.h", '#include "platform/linux/Files.h"\n', "src/cli/Verbs.h:1: .*is a backend"),
    ("arrows", "src/platform/linux/Files.h", '#include "classify/Plan.h"\n', "Files.h:1: .*lies above"),
    ("arrows", "src/text/Trim.cpp", '\n#include "Trim.h"\n', "src/text/Trim.cpp:2: .*no file below src/"),
    ("arrows", "src/attic/Old.h", '#include "text/Trim.h"\n', "src/attic/Old.h:1: folder attic has no floor"),
    ("headers", "src/text/Trim.cpp", "#include <string>\n#include <unistd.h>\n", "src/text/Trim.cpp:2: <unistd.h>"),
    ("headers", "src/cli/Verbs.h", "#include <windows.h>\n", "src/cli/Verbs.h:1: <windows.h>"),
    ("headers", "src/cli/Verbs.h", "#include <QString>\n", "src/cli/Verbs.h:1: <QString>"),
    ("headers", "src/fileop/Batch.h", "#include <gtest/gtest.h>\n", "src/fileop/Batch.h:1: <gtest/gtest.h>"),
    ("headers", "src/text/Trim_test.cpp", "#include <unicode/uchar.h>\n", "Trim_test.cpp:1: <unicode/uchar.h>"),
    ("headers", "src/fileop/Batch.h", "#include <immintrin.h>\n", "src/fileop/Batch.h:1: <immintrin.h>"),
    ("headers", "src/text/Trim.h", "#pragma once\n#ifdef _WIN32\n", "src/text/Trim.h:2: conditional code"),
    ("orphans", "src/text/Lost_test.cpp", "", "src/text/Lost_test.cpp:1: no target"),
    ("orphans", "tests/sort_test.py", "", "tests/sort_test.py:1: ctest does not run it"),
    ("orphans", "fuzz/CMakeLists.txt", "# include(a.cmake)\n", "fuzz/A_fuzz.cpp:1: no target"),
    ("orphans", "src/text/CMakeLists.txt", "kinsort_library(text SOURCES Trim.cpp Trim_test.cpp)\n",
     "src/text/Trim_test.cpp:1: built, but no test runs it"),
    ("names", "src/text/StringUtils.h", "#pragma once\n", "src/text/StringUtils.h:1: a drawer"),
    ("names", "src/platform/Files.h", "#pragma once\n// DeleteFile(a)\nvoid DeleteFile(int);\n",
     "src/platform/Files.h:3: DeleteFile is a macro"),
    ("names", "src/fileop/Batch.h", "//\n" * 501, "src/fileop/Batch.h:501: longer than 500 lines"),
    ("words", "docs/page.md", "One.\nAs issue" " #12 says.\n", "docs/page.md:2: a ticket"),
    ("words", "docs/page.md", "// see part" " 2.1\n", "docs/page.md:1: a numbered chapter"),
    ("words", "src/text/Trim.h", "// TO" "DO: trim\n", "src/text/Trim.h:1: unfinished work"),
    ("words", "docs/page.md", "cd {top}\n", "docs/page.md:1: a path of this machine"),
    ("format", "src/text/Trim.h", "#pragma once\n\nint  a;\n", "src/text/Trim.h:3: not formatted"),
]


def write(top, name, text):
    path = top / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text.replace("{top}", str(top)), encoding="utf-8")


def run(check, top):
    done = subprocess.run([HERE / f"{check}.py", top], capture_output=True, text=True)
    return done.returncode, done.stdout + done.stderr


def expect(fine, what, said):
    if not fine:
        print(f"self_test: {what}; it said:\n{said or '(nothing)'}")
    return fine


def prove(top):
    passed = True
    for check in dict.fromkeys(row[0] for row in FAULTS):
        status, said = run(check, top)
        passed &= expect(status == 0 and not said, f"{check} finds fault with a sound tree", said)
    for check, name, text, wanted in FAULTS:
        write(top, name, text)
        status, said = run(check, top)
        found = status == 1 and len(said.splitlines()) == 1 and re.search(wanted, said) is not None
        passed &= expect(found, f"{check} does not say just '{wanted}'", said)
        if name in SOUND:
            write(top, name, SOUND[name])
        else:
            (top / name).unlink()
    return passed


def main():
    with tempfile.TemporaryDirectory() as folder:
        top = Path(folder).resolve()
        subprocess.run(["git", "init", "-q", top], check=True)
        shutil.copy(HERE.parent.parent / ".clang-format", top)
        for name, text in SOUND.items():
            write(top, name, text)
        passed = prove(top)
    unproved = {p.stem for p in HERE.glob("*.py")} - {row[0] for row in FAULTS} - {"tree", "self_test"}
    passed &= expect(not unproved, f"no fault is planted for {', '.join(sorted(unproved))}; add a row to FAULTS", "")
    sys.exit(0 if passed else 1)


if __name__ == "__main__":
    main()
