"""The transcripts in README.md are what the program prints. Blocks behind a line <!-- tested --> are typed, one after
the other, into a shell in an empty home; every answer has to be the one on the page, save for times.

  KINSORT=build/dev/bin/kinsort python3 tests/readme_test.py --update    writes the answers into the page
"""

import os
import re
import shutil
import subprocess
import sys
import unittest

from workshop import KINSORT, SOURCE, Workshop

PAGE = os.path.join(SOURCE, "README.md")
BLOCK = re.compile(r"(<!-- tested -->\n```console\n)(.*?)(```\n)", re.DOTALL)
TIME = re.compile(r"\d{4}-\d\d-\d\d \d\d:\d\d")
HOME = "/home/me"  # on the page


def commands_of(block):
    return re.findall(r"^\$ (.*(?:\n> .*)*)$", block, re.MULTILINE)


class Readme(Workshop):
    def setUp(self):
        super().setUp()
        os.mkdir(os.path.join(self.top, "bin"))
        os.symlink(os.path.abspath(KINSORT), os.path.join(self.top, "bin/kinsort"))
        self.home = self.environment["HOME"]
        self.environment.update(PATH=f"{self.top}/bin:/usr/bin:/bin", LC_ALL="C.UTF-8")

    def type_in(self, block):
        """The block as a terminal would show it."""
        commands = commands_of(block)
        script = "".join(command.replace("\n> ", "\n") + "\ncode=$?; printf '\\0'; (exit $code)\n" for command in commands)
        done = subprocess.run(["bash", "-c", script], cwd=self.home, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", timeout=60)
        answers = done.stdout.replace(self.home, HOME).split("\0")
        self.assertEqual(len(answers), len(commands) + 1, done.stdout)
        return "".join(f"$ {command}\n{answer}" for command, answer in zip(commands, answers))

    def test_transcripts(self):
        with open(PAGE, encoding="utf-8") as page:
            text = page.read()
        blocks = [match[2] for match in BLOCK.finditer(text)]
        self.assertGreater(len(blocks), 3)
        self.assertEqual(text.count("```console\n"), len(blocks), "a transcript that nothing checks")
        for block in blocks:
            shown = self.type_in(block)
            self.assertEqual(TIME.sub("<time>", shown), TIME.sub("<time>", block))

    def test_pages_and_scripts_that_are_named_exist(self):
        with open(PAGE, encoding="utf-8") as page:
            text = page.read()
        named = set(re.findall(r"\]\(([^)#:]+)\)|`((?:scripts|docs|tests|bench|desktop)/[\w./-]+)", text))
        self.assertGreater(len(named), 5)
        for name in (link or path for link, path in named):
            self.assertTrue(os.path.exists(os.path.join(SOURCE, name)), name)
        with open(os.path.join(SOURCE, "scripts/setup.sh"), encoding="utf-8") as script:
            packages = set(re.findall(r'^  "([\w.+-]+) {2}', script.read(), re.MULTILINE))
        table = text.split("## Dependencies")[1].split("\n## ")[0]
        self.assertEqual(set(re.findall(r"`([\w.+-]+)`", table)) & packages, packages, "the list of packages is stale")


def update():
    case = Readme("test_transcripts")
    case.setUp()
    with open(PAGE, encoding="utf-8") as page:
        text = page.read()
    text = BLOCK.sub(lambda match: match[1] + case.type_in(match[2]) + match[3], text)
    with open(PAGE, "w", encoding="utf-8") as page:
        page.write(text)
    shutil.rmtree(case.top)


if __name__ == "__main__":
    if sys.argv[1:] == ["--update"]:
        update()
    else:
        unittest.main()
