"""The program on a terminal: table, colours, questions, Ctrl-C."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import subprocess
import termios
import unicodedata
import unittest

from workshop import KINSORT, Workshop, snapshot


def columns_of(text):
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def without_codes(text):
    return re.sub(r"\x1b\[[0-9;]*[mK]", "", text)


class TerminalSession:
    """A program whose three streams, or some of them, are a terminal of the given width."""

    def __init__(self, arguments, environment, columns=80, stdin=None):
        self.master, slave = pty.openpty()
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))

        def take_terminal():
            os.setsid()
            fcntl.ioctl(slave, termios.TIOCSCTTY, 0)

        self.process = subprocess.Popen([os.path.abspath(KINSORT), *arguments], env=environment,
                                        stdin=slave if stdin is None else stdin, stdout=slave, stderr=slave,
                                        preexec_fn=take_terminal, pass_fds=[slave])
        os.close(slave)
        self.text = ""

    def read_until(self, wanted):
        """Reads until `wanted` appears; with None until the program closes the terminal."""
        while wanted is None or wanted not in self.text:
            ready, _, _ = select.select([self.master], [], [], 60)
            if not ready:
                raise AssertionError(f"no '{wanted}' in a minute; so far: {self.text!r}")
            try:
                data = os.read(self.master, 65536)
            except OSError:  # the other end is closed
                data = b""
            if not data:
                if wanted is None:
                    return
                raise AssertionError(f"the program ended without '{wanted}': {self.text!r}")
            self.text += data.decode("utf-8")

    def type(self, text):
        os.write(self.master, text.encode())

    def finish(self):
        self.read_until(None)
        code = self.process.wait()
        os.close(self.master)
        return code


class OnATerminal(Workshop):
    def session(self, *arguments, **options):
        return TerminalSession(arguments, self.environment, **options)

    def test_table_fits_the_window_and_is_coloured_unless_unwanted(self):
        self.make_folders("ひらがなのフォルダー" * 3, "photos of last summer")
        for name in ("ひらがなのファイル" * 3 + ".txt", "photos.jpg", "photo e\u0301\u0301.jpg", "zzz", "\x1b]0;x\x07 photos"):
            self.make_file(self.source, name)
        for columns in (20, 40, 61, 80, 300):
            session = self.session("plan", "--to", self.target, "--scores", *self.items(), columns=columns)
            self.assertEqual(session.finish(), 1)
            lines = session.text.split("\r\n")[:5]
            for line in lines:
                self.assertLessEqual(columns_of(without_codes(line)), columns, line)
                self.assertIn("->", line)
            self.assertNotIn("\x07", session.text)
            self.assertEqual("…" in session.text, columns < 100)
        self.assertIn("\x1b[33m(no similar folder)\x1b[0m", session.text)
        self.environment["NO_COLOR"] = "1"
        session = self.session("plan", "--to", self.target, *self.items())
        session.finish()
        self.assertNotIn("\x1b[", session.text)

    def make_conflicts(self, *names):
        self.make_folders("alpha")
        for name in names:
            self.make_file(self.source, name, b"new " + name.encode())
            self.make_file(self.target, f"alpha/{name}", b"old")

    def contents(self):
        return {name.decode(): kept[3].decode() for name, kept in snapshot(f"{self.target}/alpha").items()}

    def test_questions_are_asked_one_by_one_or_for_all(self):
        self.make_conflicts("alpha 1", "alpha 2", "alpha 3", "alpha 4")
        session = self.session("sort", "--to", self.target, "--move", *self.items())
        session.read_until("for all: ")
        self.assertRegex(session.text, r"new: \S+/source/alpha 1  \(file, 11 B, 2020-09-13 12:26\)\r\n"
                                       r"  old: \S+/target/alpha/alpha 1  \(file, 3 B, 2020-09-13 12:26\)")
        session.type("x\n")
        session.read_until("Please type r, s, k or c: ")
        session.type("s\n")
        session.read_until("source/alpha 2  (")
        session.type("k\n")
        session.read_until("source/alpha 3  (")
        session.type("R\n")
        self.assertEqual(session.finish(), 0, session.text)
        self.assertEqual(self.contents(), {"alpha 1": "old", "alpha 2": "old", "alpha 2 (2)": "new alpha 2",
                                           "alpha 3": "new alpha 3", "alpha 4": "new alpha 4"})
        self.assertEqual(session.text.count("for all: "), 3)

    def test_ctrl_c_in_a_question_changes_nothing_more(self):
        self.make_conflicts("alpha 1", "alpha 2")
        before = snapshot(self.source), snapshot(self.target)
        session = self.session("sort", "--to", self.target, "--move", *self.items())
        session.read_until("for all: ")
        session.type("\x03")
        self.assertEqual(session.finish(), 3, session.text)
        self.assertIn("stopped", session.text)
        self.assertEqual((snapshot(self.source), snapshot(self.target)), before)

    def test_a_list_on_standard_input_leaves_nobody_to_ask(self):
        self.make_conflicts("alpha 1")
        with open(os.path.join(self.top, "list"), "wb") as file:
            file.write(self.items()[0])
        with open(os.path.join(self.top, "list"), "rb") as file:
            session = self.session("sort", "--to", self.target, "--move", "-f", "-", stdin=file)
            self.assertEqual(session.finish(), 3, session.text)
        self.assertIn("nobody can be asked here", session.text)
        self.assertEqual(self.contents(), {"alpha 1": "old"})

    def test_ctrl_c_while_a_list_is_read(self):
        self.make_folders("alpha")
        self.make_file(self.source, "alpha")
        session = self.session("sort", "--to", self.target, "--move", "-f", "-")
        session.type(f"{self.source}/alpha\n")
        # The terminal echoes when the line has arrived; the program then waits for more.
        session.read_until("source/alpha\r\n")
        status = f"/proc/{session.process.pid}/status"
        caught = 0
        while not caught & 1 << (signal.SIGINT - 1):
            with open(status) as file:
                caught = int(re.search(r"^SigCgt:\s*([0-9a-f]+)$", file.read(), re.M).group(1), 16)
        session.type("\x03")
        self.assertEqual(session.finish(), 3, session.text)
        self.assertEqual(os.listdir(self.source), ["alpha"])

    def test_progress_leaves_no_trace(self):
        self.make_folders("alpha")
        self.make_file(self.source, "alpha", b"x" * 100000)
        session = self.session("sort", "--to", self.target, "--copy", *self.items())
        self.assertEqual(session.finish(), 0)
        last = session.text.split("\x1b[K")[-1]
        self.assertRegex(last, r"^Copied 1 item\.\r\nTake it back with: kinsort undo \d+\r\n$")
        self.assertIn("\r\x1b[K", session.text, "a bar was there")


if __name__ == "__main__":
    unittest.main()
