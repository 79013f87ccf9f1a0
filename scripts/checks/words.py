#!/usr/bin/env python3
"""The project speaks of itself alone: no paths of one machine, no tickets, no marks of unfinished work."""

import re

import tree

RULES = (
    (re.compile(r"(?i)\b(issue|ticket|session)s?\s*#?\d+\b"),
     "a ticket means nothing to a reader; say the reason itself"),
    (re.compile(r"(?i)\bparts? \d+\.\d+\b"), "a numbered chapter of something else; say the rule itself"),
    (re.compile(r"\b(TO" r"DO|FIX" r"ME|X" r"XX)\b"), "unfinished work; do it or say plainly what is not supported"),
    (re.compile(r"^(<{7}|>{7}) "), "a merge that was not finished"),
)


def main():
    top = tree.root()
    checkout = (re.compile(re.escape(str(top)) + r"\b"), "a path of this machine; write it relative to the checkout")
    rules = RULES + ((checkout,) if str(top).count("/") > 1 else ())
    faults = []
    for name in tree.files(top):
        if b"\0" in (top / name).read_bytes()[:4096]:
            continue
        for number, text in tree.lines(top, name):
            faults += [(name, number, message) for pattern, message in rules if pattern.search(text)]
    tree.finish(faults)


if __name__ == "__main__":
    main()
