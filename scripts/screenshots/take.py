#!/usr/bin/env python3
"""Takes the pictures of the documentation, the dialog and a conflict in each language, with real files on a virtual
display. Prints the files that it writes.

usage: take.py KINSORT FOLDER
"""

import contextlib
import ctypes
import os
import shutil
import struct
import subprocess
import sys
import time
import zlib

from screen import Screen, environment_below

LANGUAGES = ("ja-JP", "en-US")
STAGE = "/tmp/demo"  # seen in the pictures
QUIET_SECONDS = 0.7
GIVE_UP_SECONDS = 30
CARET_LINES = 24
TAKEN = ("Budget", "budget(2).csv")  # a name that is taken already
UNMATCHED = "12345.tmp"


class Display(Screen):
    """A screen with a keyboard, the XTest extension."""

    def __init__(self):
        super().__init__()
        self.x11, self.xtest = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.connection = ctypes.c_void_p(self.x11.XOpenDisplay(self.name.encode()))
        self.x11.XDefaultRootWindow.restype = ctypes.c_ulong
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.connection))

    def settled(self, before):
        """The picture when it has become another one than `before` and no longer changes, but for a caret."""
        begun, changed, last = time.monotonic(), None, before
        while changed is None or time.monotonic() - changed < QUIET_SECONDS:
            if time.monotonic() - begun > GIVE_UP_SECONDS:
                raise SystemExit("take.py: nothing appears on the display")
            picture = self.picture()
            lines = sum(new != old for new, old in zip(self.lines(picture), self.lines(last)))
            last = picture
            if lines > CARET_LINES:
                changed = time.monotonic()
            time.sleep(0.02)
        return last

    def press(self, *names):
        """Presses the keys together in the window in the middle of the screen, where windows come up."""
        self.x11.XWarpPointer(self.connection, 0, self.root, 0, 0, 0, 0, self.width // 2, self.height // 2)
        root, child, number = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.c_int()
        self.x11.XQueryPointer(self.connection, self.root, ctypes.byref(root), ctypes.byref(child),
                               *[ctypes.byref(number)] * 5)
        self.x11.XSetInputFocus(self.connection, child, 1, 0)  # there is no window manager that would
        codes = [self.x11.XKeysymToKeycode(self.connection, ctypes.c_ulong(self.x11.XStringToKeysym(name.encode())))
                 for name in names]
        for code in codes:
            self.xtest.XTestFakeKeyEvent(self.connection, code, 1, 0)
        for code in reversed(codes):
            self.xtest.XTestFakeKeyEvent(self.connection, code, 0, 0)
        self.x11.XFlush(self.connection)


def write_png(display, picture, file):
    """The part of the picture that windows stand on."""
    lines = display.lines(picture)
    empty = display.blank[:display.line]
    rows = [i for i, line in enumerate(lines) if line != empty]
    top, bottom = rows[0], rows[-1] + 1
    middle = lines[(top + bottom) // 2]
    columns = [x for x in range(display.width) if middle[4 * x:4 * x + 3] != empty[4 * x:4 * x + 3]]
    left, right = columns[0], columns[-1] + 1
    data = bytearray()
    for line in lines[top:bottom]:
        part = line[4 * left:4 * right]
        row = bytearray(3 * (right - left))
        row[0::3], row[1::3], row[2::3] = part[2::4], part[1::4], part[0::4]  # stored blue, green, red
        data += b"\0" + row

    def chunk(kind, content):
        return (struct.pack(">I", len(content)) + kind + content +
                struct.pack(">I", zlib.crc32(kind + content)))

    with open(file, "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" +
                  chunk(b"IHDR", struct.pack(">IIBBBBB", right - left, bottom - top, 8, 2, 0, 0, 0)) +
                  chunk(b"IDAT", zlib.compress(bytes(data), 9)) + chunk(b"IEND", b""))
    print(file)


def lay_out():
    """The folders and files of the demonstration."""
    names = os.path.join(os.path.dirname(__file__), "..", "demo")
    documents, downloads = os.path.join(STAGE, "Documents"), os.path.join(STAGE, "Downloads")
    for folder in (documents, downloads):
        shutil.rmtree(folder, ignore_errors=True)
        os.mkdir(folder)
    with open(os.path.join(names, "folders.txt"), encoding="utf-8") as file:
        for name in file.read().splitlines():
            os.mkdir(os.path.join(documents, name))
    with open(os.path.join(names, "items.txt"), encoding="utf-8") as file:
        items = [os.path.join(downloads, name) for name in file.read().splitlines()]
    for item in items:
        with open(item, "w", encoding="utf-8") as file:
            file.write("This is " + os.path.basename(item) + "\n")
    with open(os.path.join(documents, *TAKEN), "w", encoding="utf-8") as file:
        file.write("An earlier one.\n")
    return documents, items


def take(kinsort, folder, language):
    environment = environment_below(STAGE)
    subprocess.run([kinsort, "settings", "set", "NLS", "." + language], env=environment, check=True,
                   capture_output=True)
    documents, items = lay_out()
    with contextlib.closing(Display()) as display:
        environment["DISPLAY"] = display.name

        def open_dialog(wanted):
            return subprocess.Popen([kinsort, "open", "--move", "--to", documents, *wanted], env=environment,
                                    stdout=subprocess.DEVNULL)

        def shot(name, picture):
            write_png(display, picture, os.path.join(folder, f"{name}.{language}.png"))

        program = open_dialog(items)
        shot("dialog", display.settled(display.blank))
        display.press("Escape")
        program.wait(GIVE_UP_SECONDS)
        program = open_dialog([item for item in items if os.path.basename(item) != UNMATCHED])
        picture = display.settled(display.blank)
        display.press("Alt_L", "o")
        picture = display.settled(picture)
        shot("conflict", picture)
        display.press("Escape")
        display.settled(picture)  # the outcome
        display.press("Escape")
        program.wait(GIVE_UP_SECONDS)


def main():
    kinsort, folder = os.path.abspath(sys.argv[1]), sys.argv[2]
    try:
        os.mkdir(STAGE, 0o700)
    except FileExistsError:
        raise SystemExit(f"take.py: {STAGE} exists; move it away, its name is seen in the pictures")
    try:
        os.makedirs(folder, exist_ok=True)
        for language in LANGUAGES:
            take(kinsort, folder, language)
    finally:
        shutil.rmtree(STAGE)


if __name__ == "__main__":
    main()
