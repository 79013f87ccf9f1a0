#!/usr/bin/env python3
"""Every C++ file is as clang-format leaves it."""

import os
import re
import shutil
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import tree

FAULT = re.compile(r"^(.+?):(\d+):\d+: error: ")
VERSION = "14"  # each version has its own taste


def find_tool():
    for tool in (f"clang-format-{VERSION}", "clang-format"):
        if shutil.which(tool):
            said = subprocess.run([tool, "--version"], capture_output=True, text=True, check=True).stdout
            if f"version {VERSION}." in said:
                return tool
    sys.exit(f"format: clang-format {VERSION} is needed; run scripts/setup.sh on Debian 12")


def first_fault(tool, top, name):
    run = subprocess.run([tool, "--dry-run", "-Werror", name], cwd=top, capture_output=True, text=True)
    match = FAULT.match(run.stderr)
    if run.returncode == 0:
        return None
    return (name, match.group(2) if match else 1, f"not formatted; run clang-format -i {name}")


def main():
    top = tree.root()
    tool = find_tool()
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        found = pool.map(lambda name: first_fault(tool, top, name), tree.cpp_files(top))
    tree.finish([fault for fault in found if fault])


if __name__ == "__main__":
    main()
