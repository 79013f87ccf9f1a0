"""One script that uses the whole language, on a terminal, with a host that listens and programs that are really there:
everything that comes of it."""

import json
import os
import re
import select
import signal
import unittest

from host_test import Listener
from terminal_test import TerminalSession
from workshop import KINSORT, SOURCE, Workshop

HERE = os.path.dirname(os.path.abspath(__file__))
WORDS = ("var if else endif for next do while continue break goto exit exitall eof debug updatestate icon fileclose "
         "removeselectitems").split()

# Notes time, folder and arguments, and ends with the first of them. "exec" only ends when `meet` has met it.
NOTE = """#!/bin/sh
{ printf '%s %s' "$(date +%s%N)" "${PWD#@TOP@}"; printf '|%s' "$@"; echo; } >>'@TOP@/log'
[ "$1" != exec ] || echo >'@TOP@/meeting'
[ "$1" = exec ] || exit "$1"
"""
# Open for writing, too: the end of whom it met before is nothing to read.
MEET = """#!/bin/sh
read line <>'@TOP@/meeting'
exit 4
"""
OPEN = """#!/bin/sh
printf '0 %s|opened|%s\\n' "${PWD#@TOP@}" "$1" >>'@TOP@/log'
echo >'@TOP@/meeting'
"""
# Stands in for the program that asks for an administrator's rights.
ELEVATE = """#!/bin/sh
printf '0 %s|elevated|%s|%s\\n' "${PWD#@TOP@}" "$1" "$2" >>'@TOP@/log'
shift
exec "$@"
"""
# A program with a window, onto which items can be dropped.
RECEIVER = """#!/bin/sh
echo $$ >'@TOP@/receiver.pid'
exec '@KINSORT@' host listen --json --class receiver >'@TOP@/drops' 2>/dev/null
"""

VALUES = r"""include set inside
csv pear
find 2
left a,
right jkl
Length 4
SubString cde
replace my_long_name
string 2025-01-05, 1+1
padding 0007
trimleft 120
trimright 0012
double 0.375
MainWindowPosition 36
GetSystemMetrics 0
assignment 42th
GetExt .gz
GetName in
GetPath @IN@\in\
RemoveLastSeparator @IN@\in
IsDirectory 1
Exist 0
IsFile 1
random @IN@\in\first.txt
detectcodepage 932
detectcodepagejpn 1200
fileread あいうえ
fileallread 短い
GetClipboardText copied in @IN@
messagebox 2
messageboxok 1
messageboxyn 7
call 3
exec 259
meet 4
timeout 259
item first.txt of 2
item second.png of 2
last new, one.doc
kept first.txt
kept second.png
kept new, one.doc
kept first.txt
left new, one.doc
loops 38
"""

DATA = [
    (100, r"@IN@\in"), (403, r"@IN@\letter.txt"), (901, r"10/@IN@\in"), (1003, "9/text, more"), (205, "?nowdir?"),
    (205, "open 2"), (800, "*.png"), (910, "inner"), (911, "?operation?"), (912, "1"), (1200, r"@IN@\sea.png"),
    (1234, "a,b"), (100, "@IN@"), (200, r"@IN@\in"), (300, "Z:\\"),
]
NUMBERS = [(273, 40001, -1), (273, 40002, 38), (0x8008, 1, 0), (0x8008, 2, 3), (0x8009, 4, 5), (0x800A, 6, 7),
           (0x800B, 8, 9), (0x800C, 10, 11)]

STARTED = [
    "|3|a b|@TOP@/in|日本",
    "|exec|from|a|function",
    "|exec|from|a|statement",
    "/in|0|in|bootdir",
    "/in|0|after|runwait",
    "/in|0|after|wait",
    "/in|elevated|--keep-cwd|note",
    "/in|exec|with|more|rights",
    "/in|exec|from|a|worker",
    "/in|exec|without",
    "/in|0|all|@TOP@/in/first.txt|@TOP@/second.png",
    "|0|one|@TOP@/in/first.txt|of|first.txt",
    "|0|one|@TOP@/second.png|of|second.png",
    "|0|later|first",
    "|opened|@TOP@/second.png",
]

# What the terminal shows, and what is typed after it.
CONVERSATION = [
    ("This is the line that I do not understand.\nDo you want to continue?\n@LINE@:what is this [yes or no] ", "yes"),
    ("Vel: One, or [yes, no or cancel] ", "c"),
    ("Vel: Two\n", None),
    ("Vel: Three [yes or no] ", "n"),
    ("Vel: Four\nVel: Five\n", None),
    ("Vel: Six [yes or no] ", "maybe"),
    ("Please type yes or no: ", "y"),
    ("Timeout!\nAre you sure you want to kill the process? [yes or no] ", "y"),
    ("File is not open.\n", None),
    ("Syntax error!\npostmessagetab=1,2\n", None),
    ("Please select an application.\n  1  missing.exe\n  2  note\nNumber, or nothing to cancel: ", "2"),
    ("Vel: back with the end\n", None),
]


def sections_of(text):
    """{name: lines} of the scripts in one file."""
    sections = {}
    for line in text.splitlines():
        if line.startswith("//// "):
            sections[line[5:]] = []
        elif sections:
            sections[list(sections)[-1]].append(line)
    return sections


def names_of(title):
    """The names that the reference lists in a section: headings, and first cells of its table."""
    with open(os.path.join(SOURCE, "docs", "script-language.md"), encoding="utf-8") as file:
        section = re.search(rf"^## {title}$(.*?)(?=^## |\Z)", file.read(), re.S | re.M).group(1)
    return re.findall(r"^### (.+)$", section, re.M) or re.findall(r"^\| `(\w+)` \|", section, re.M)


class EverythingTest(Workshop):
    def setUp(self):
        super().setUp()
        with open(os.path.join(HERE, "everything.ecs"), encoding="utf-8") as file:
            self.scripts = sections_of(file.read())

    def filled(self, text):
        return (text.replace("@TOP@", self.top).replace("@IN@", "Z:" + self.top.replace("/", "\\"))
                .replace("@KINSORT@", os.path.abspath(KINSORT))
                .replace("@LINE@", str(self.line_of("what is this"))))

    def line_of(self, text):
        return self.scripts["all.ecs"].index(text) + 1

    def read(self, name):
        with open(os.path.join(self.top, name), "rb") as file:
            return file.read()

    def end_receiver(self):
        if os.path.exists(os.path.join(self.top, "receiver.pid")):
            os.kill(int(self.read("receiver.pid")), signal.SIGINT)

    def test_nothing_of_the_language_is_left_out(self):
        lines = [line for script in self.scripts.values() for line in script]
        keys = {re.split("[= ]", line)[0].lower() for line in lines}
        functions = {re.split("[=,]", line)[1].lower() for line in lines if re.match(r"\$v=\w+(,|$)", line)}
        for title, least, used in (("Functions", 30, functions), ("Commands", 45, keys), ("Options", 14, keys)):
            names = names_of(title)
            self.assertGreaterEqual(len(names), least)
            self.assertEqual([name for name in names if name.lower() not in used], [])
        self.assertEqual([word for word in WORDS if word not in keys], [])

    def test_everything_that_comes_of_it(self):
        tools = os.path.join(self.top, "tools")
        for name, program in (("note", NOTE), ("meet", MEET), ("xdg-open", OPEN), ("pkexec", ELEVATE),
                              ("receiver", RECEIVER)):
            self.make_file(tools, name, self.filled(program).encode(), mode=0o755)
        self.environment["PATH"] = tools + ":" + self.environment["PATH"]
        self.environment["LC_ALL"] = "C.UTF-8"
        for name in ("meeting", "drops"):
            os.mkfifo(os.path.join(self.top, name))
        for name, lines in self.scripts.items():
            self.make_file(self.top, name, "\r\n".join(lines).encode("utf-16"))
        self.make_file(self.top, "letter.txt", "あいうえ\r\nお".encode("cp932"))
        self.make_file(self.top, "short.txt", "短い".encode("cp932"))
        self.make_file(self.top, "values.txt", b"replaced")
        self.make_file(self.top, "in/first.txt")
        self.make_file(self.top, "second.png")

        outer = os.path.join(self.top, "outer.ecs")
        doubts = self.run_json("script", "check", outer, os.path.join(self.top, "all.ecs"), code=1)
        self.assertEqual([(row["line"], row["rule"]) for row in doubts], [
            (self.line_of("what is this"), "unknown-line"), (self.line_of("what is that"), "unknown-line")])

        drops = os.fdopen(os.open(os.path.join(self.top, "drops"), os.O_RDWR), "rb", buffering=0)
        self.addCleanup(drops.close)
        self.addCleanup(self.end_receiver)
        host = Listener(self, "--json")
        session = TerminalSession(["script", "run", outer, "--cwd", self.top,
                                   "--select", os.path.join(self.top, "in/first.txt"),
                                   "--select", os.path.join(self.top, "second.png")], self.environment)
        expected = ""
        for shown, typed in CONVERSATION:
            expected += self.filled(shown).replace("\n", "\r\n")
            session.read_until(expected[-200:])
            if typed is not None:
                session.type(typed + "\n")
                expected += typed + "\r\n"
        self.assertEqual(session.finish(), 0, session.text)
        self.assertEqual(session.text, expected)

        self.maxDiff = None
        self.assertEqual(self.read("values.txt").decode("utf-16-le"),
                         "\ufeff" + self.filled(VALUES).replace("\n", "\r\n"))
        self.assertTrue(select.select([drops], [], [], 60)[0], "nothing was dropped")
        self.assertEqual(json.loads(drops.readline()), {"kind": "drop", "items": [
            {"path": os.path.join(self.top, "in/first.txt")}, {"path": os.path.join(self.top, "second.png")}]})
        self.assertEqual(self.read("narrow.txt"), b"first narrow line\r\nsecond\r\n")
        log = [line.split(" ", 1) for line in self.read("log").decode().splitlines()]
        self.assertEqual([text for _, text in log], [self.filled(line) for line in STARTED])
        times = {text: int(time) for time, text in log}
        for earlier, later in (("in|bootdir", "after|runwait"), ("after|runwait", "after|wait")):
            pause = times["/in|0|" + later] - times["/in|0|" + earlier]
            self.assertGreaterEqual(pause, 250_000_000, later)
        self.assertEqual([(row["value_name"], row["type"], row["value"]) for row in
                          self.run_json("settings", "list", r"Software\TEV_Soft\Vel\Main001\Test")],
                         [("Number", "dword", 32), ("Text", "string", "a, ?nowdir?")])
        told = [json.loads(line) for line in host.stop()]
        self.assertEqual([(row["code"], row["text"]) for row in told if row["kind"] == "data"],
                         [(code, self.filled(text)) for code, text in DATA])
        self.assertCountEqual([(row["message"], row["first"], row["second"]) for row in told
                               if row["kind"] == "numbers"], NUMBERS)
        self.assertEqual(len(told), len(DATA) + len(NUMBERS))


if __name__ == "__main__":
    unittest.main()
