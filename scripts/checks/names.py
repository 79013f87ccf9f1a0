#!/usr/bin/env python3
"""File and function names: no drawer for everything, no file that has grown past reading, no name that a Windows header
turns into another one."""

import re
from pathlib import PurePosixPath

import tree

DRAWERS = re.compile(r"(?i)(utils?|common|helpers?|misc)$")
MAX_LINES = 500
# Each of these is a macro there: a method of this name would be two different methods in two files.
MACROS = re.compile(r"""(?x)\b(
    CopyFile|CreateDirectory|CreateEvent|CreateFile|CreateFileMapping|CreateMutex|CreateProcess|CreateWindow|DeleteFile|
    DialogBox|DrawText|ExpandEnvironmentStrings|FindFirstFile|FindNextFile|FindWindow|FormatMessage|GetClassName|
    GetCommandLine|GetCurrentDirectory|GetEnvironmentVariable|GetFileAttributes|GetFullPathName|GetMessage|GetObject|
    GetTempPath|GetUserName|GetWindowText|LoadIcon|LoadLibrary|LoadString|MessageBox|MoveFile|OpenEvent|OpenMutex|
    PostMessage|RemoveDirectory|ReplaceFile|SearchPath|SendMessage|SetCurrentDirectory|SetWindowText|ShellExecute|Yield
    )\s*\(""")
LITERALS = re.compile(r'"(?:\\.|[^"\\])*"|//.*')


def main():
    top = tree.root()
    faults = []
    for name in tree.cpp_files(top):
        if DRAWERS.search(PurePosixPath(name).stem):
            faults.append((name, 1, "a drawer for everything; name the file by what it does"))
        number = 0
        for number, text in tree.lines(top, name):
            match = not name.startswith("src/platform/windows/") and MACROS.search(LITERALS.sub('""', text))
            if match:
                faults.append((name, number, f"{match.group(1)} is a macro of the Windows headers; take another word"))
        if number > MAX_LINES and not tree.is_test(name):
            faults.append((name, number, f"longer than {MAX_LINES} lines; split it by concept"))
    tree.finish(faults)


if __name__ == "__main__":
    main()
