"""kinsort open: the hand-off as a command receives it, with a stand-in for the dialog in an installation of its own."""

import json
import os
import shutil
import subprocess
import sys
import unittest

from workshop import HOST_VARIABLE, KINSORT, Workshop

# Writes down what it was started with, then marks the block as read, as the dialog does. Waits for the pipes that the
# test has made, before it reads and before it ends.
STAND_IN = f"#!{sys.executable}" + r"""
import json, os, sys
report = {"arguments": sys.argv[1:], "descriptor": os.environ["VEL_ExCommand"]}
pipe = os.environ.get("STAND_IN_PIPES")
if pipe: open(pipe + ".read").read()
fields = report["descriptor"].split(":")
path = os.path.join(os.environ["XDG_RUNTIME_DIR"], "vel", f"ShareMem_{fields[2]}_{fields[3]}")
if fields[8] == "Share":
    report["mode"] = os.stat(path).st_mode & 0o777
    with open(path, "rb") as block:
        data = block.read()
    report["size"] = len(data) == int(fields[4])
    text = data.decode("utf-16-le", "surrogatepass").split("\0")[0]
    report["fields"] = text.split("\t")
with open(os.environ["STAND_IN_REPORT"], "w", encoding="utf-8", errors="surrogatepass") as out:
    json.dump(report, out)
if fields[8] == "Share":
    with open(path, "r+b") as block:
        block.write(text.replace("\t", "\0").encode("utf-16-le", "surrogatepass"))
if pipe: open(pipe + ".end").read()
print("a word on standard output")
sys.exit(7)
"""


class Open(Workshop):
    def setUp(self):
        super().setUp()
        self.installed = os.path.join(self.top, "opt")
        self.dialog = os.path.join(self.installed, "lib/vel/command/Default/Kinsort")
        self.kinsort = os.path.join(self.installed, "bin/kinsort")
        for program in (self.dialog, self.kinsort):
            os.makedirs(os.path.dirname(program))
        shutil.copy2(os.path.abspath(KINSORT), self.kinsort)
        with open(self.dialog, "w", encoding="utf-8") as file:
            file.write(STAND_IN)
        os.chmod(self.dialog, 0o755)
        self.report = os.path.join(self.top, "report.json")
        self.blocks = os.path.join(self.environment["XDG_RUNTIME_DIR"], "vel")
        self.environment |= {"STAND_IN_REPORT": self.report, "DISPLAY": ":99", HOST_VARIABLE: "of the one who started us"}

    def open(self, *arguments, code=7, **options):
        done = subprocess.run([self.kinsort, "open", *arguments], env=self.environment, cwd=self.top, timeout=120,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
        self.assertEqual(done.returncode, code, done.stderr.decode())
        self.assertEqual(done.stdout, b"")
        return done.stderr.decode()

    def reported(self):
        with open(self.report, encoding="utf-8") as file:
            return json.load(file)

    def inner(self, path):
        return "Z:" + path.replace("/", "\\")

    def language(self):
        return self.run_kinsort("settings", "get", "NLS", "-q").output.strip()

    def test_hands_everything_over(self):
        self.make_folders("first", "second tab")
        self.make_file(self.source, "a b.txt")
        odd = self.make_file(self.source, b"\xff\t\xe6\x97\xa5")
        many = [self.make_file(self.source, "one of many").decode()] * 3000
        tabs = [os.path.join(self.target, name) for name in ("first", "second tab")]
        said = self.open("/2M", "--to", self.target, "--other-tab", tabs[0], "--other-tab=" + tabs[1],
                         "file://" + self.source + "/a%20b.txt", "source/", odd, "-f", "-",
                         input="\0".join(many).encode() + b"\0")
        report = self.reported()
        self.assertEqual(said, "a word on standard output\n")
        self.assertEqual(report["arguments"], ["/2M", self.target])
        self.assertTrue(report["size"])
        self.assertEqual(report["mode"], 0o600)
        odd_inner = self.inner(self.source) + "\\\udcff\uf009\u65e5"
        items = [self.inner(self.source + "/a b.txt"), self.inner(self.source), odd_inner, *map(self.inner, many)]
        self.assertEqual(report["fields"], [str(len(items)), "2", self.inner(self.top), "", *items,
                                            *map(self.inner, tabs), ""])
        self.assertEqual(os.listdir(self.blocks), [], "nothing is left behind")

    def test_modes_and_folders_that_look_like_modes(self):
        for arguments, expected in ((["/c"], ["/c"]), (["--move"], ["/m"]), (["/2c", "/M"], ["/2c", "/M"]), ([], [])):
            self.open(*arguments)
            report = self.reported()
            self.assertEqual(report["arguments"], expected)
            self.assertNotIn("Share", report["descriptor"], "no items, no block: files can be dropped on the dialog")
            self.assertEqual(len(report["descriptor"].split(":")), 10)

    def test_missing_items_and_folders(self):
        item = self.make_file(self.source, "here")
        self.environment["LANG"] = "en_US.UTF-8"
        self.assertIn("kinsort: gone: it does not exist", self.open("gone", item))
        self.assertEqual(self.reported()["fields"][0], "1")
        os.unlink(self.report)
        for arguments in (["gone"], ["--to", "gone", item], ["--other-tab", "gone", item], ["--other-tab", item, item]):
            self.assertIn("gone: " if "gone" in arguments else "this is a file; name a folder",
                          self.open(*arguments, code=3))
        self.assertIn("--other-tab is empty", self.open("--other-tab", "", item, code=2))
        os.unlink(self.dialog)
        self.assertIn(f"the dialog cannot be started: {self.dialog}: it does not exist", self.open(item, code=3))
        self.assertFalse(os.path.exists(self.report))
        self.assertEqual(os.listdir(self.blocks), [])

    def test_needs_a_display(self):
        item = self.make_file(self.source, "here")
        del self.environment["DISPLAY"]
        for platform, isShown in (("", False), ("xcb", False), ("wayland;xcb", False), ("offscreen", True)):
            self.environment["QT_QPA_PLATFORM"] = platform
            said = self.open(item, code=7 if isShown else 3)
            self.assertEqual("kinsort sort --to DIR --move ITEM..." in said, not isShown)
            self.assertEqual(said.count("\n"), 1)
        del self.environment["QT_QPA_PLATFORM"]
        self.environment["WAYLAND_DISPLAY"] = "wayland-0"
        self.open(item)

    # The first time decides; what somebody chose stays.
    def test_language_is_the_users(self):
        for number, (variables, suffix) in enumerate((
                ({"LANG": "ja_JP.UTF-8"}, ".ja-JP"), ({"LANG": "de_DE.UTF-8"}, ".en-US"), ({}, ".en-US"),
                ({"LANG": "ja_JP.UTF-8", "LC_MESSAGES": "en_GB.UTF-8"}, ".en-US"),
                ({"LANG": "C", "LC_MESSAGES": "C", "LC_ALL": "ja"}, ".ja-JP"), ({"LANG": "jam_JM"}, ".en-US"))):
            self.environment["XDG_CONFIG_HOME"] = os.path.join(self.top, f"config{number}")
            before = dict(self.environment)
            self.environment |= variables
            self.open()
            self.environment = before | {"LANG": "ja_JP.UTF-8"}
            self.open()
            self.environment = before
            self.assertEqual(self.language(), suffix, variables)
        self.run_kinsort("settings", "set", "NLS", ".ja-JP")
        self.environment["LANG"] = "en_US.UTF-8"
        self.open()
        self.assertEqual(self.language(), ".ja-JP")

    def test_who_does_not_wait_keeps_the_block_until_it_was_read(self):
        pipes = self.environment["STAND_IN_PIPES"] = os.path.join(self.top, "pipe")
        for end in (".read", ".end"):
            os.mkfifo(pipes + end)
        item = self.make_file(self.source, "here")
        for is_waiting in (False, True):
            opening = subprocess.Popen([self.kinsort, "open", *([] if is_waiting else ["--no-wait"]), item],
                                       env=self.environment, cwd=self.top, stderr=subprocess.DEVNULL)
            with open(pipes + ".read", "w"):  # opens when the stand-in waits on its end
                self.assertIsNone(opening.poll())
                self.assertTrue(os.listdir(self.blocks))
            with open(pipes + ".end", "w"):
                if is_waiting:
                    opening.terminate()  # which says that it need not wait any more
                self.assertEqual(opening.wait(60), 0)
            self.assertEqual(os.listdir(self.blocks), [])
            self.assertEqual(self.reported()["fields"][4], self.inner(os.fsdecode(item)))


if __name__ == "__main__":
    unittest.main()
