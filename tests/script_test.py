"""kinsort script run: from a file to the world outside, its exit codes, and how it is stopped."""

import os
import signal
import subprocess
import unittest

from workshop import KINSORT, Workshop, snapshot


class Script(Workshop):
    def write(self, *lines, name="script.ecs", mark=b"\xff\xfe"):
        path = os.path.join(self.top, name)
        with open(path, "wb") as file:
            file.write(mark + "".join(line + "\r\n" for line in lines).encode("utf-16-le"))
        return path

    def run_script(self, *lines, options=(), **more):
        return self.run_kinsort("script", "run", self.write(*lines), *options, **more)

    def read(self, name):
        with open(os.path.join(self.top, name), "rb") as file:
            return file.read()

    def test_works_on_the_selected_items_and_writes_files(self):
        inner = "Z:" + self.top.replace("/", "\\")
        done = self.run_script(
            "fileopen=?nowdir?\\out.txt", "for", "filewritew=?SelPath?|?Name?|?Ext?|greeting", "next", "fileclose",
            "messagebox=0,?SelectedCount? in ?Dir?",
            options=["--select", "a b.txt", "--select", "/x/ü.tar.gz", "--set", "greeting=hé", "--other", "target"])
        self.assertEqual(self.read("out.txt").decode("utf-16-le"),
                         f"{inner}\\|a b|.txt|hé\r\nZ:\\x\\|ü.tar|.gz|hé\r\n")
        self.assertEqual(done.messages, f"Vel: 2 in {inner[2:]}\\target\\\n")
        self.assertEqual(done.output, "")

    def test_starts_programs_in_the_current_folder_and_gets_their_codes(self):
        self.run_script(
            "var code", "code=call,sh -c \"pwd > here; exit 3\"", "fileopen=result", "filewritea=code",
            options=["--cwd", "target"])
        self.assertEqual(self.read("target/here").decode().strip(), self.target)
        self.assertEqual(self.read("result"), b"3\r\n")

    def test_exit_codes_tell_how_the_run_ended(self):
        cases = [
            (["var x"], 0, ""),
            (["exit", "if"], 0, ""),
            (["exitall"], 0, ""),
            (["if"], 1, "Syntax error!\nif\n"),
            (["a:", "goto a"], 1, "The number of repetitions of up too many.(5 times)\n"),
            (["messageboxyn=Go on?"], 1, "Vel: Go on? [yes or no] no (nobody to ask; see --yes and --no)\n"),
        ]
        for lines, code, messages in cases:
            with self.subTest(lines):
                self.assertEqual(self.run_script(*lines, code=code).messages, messages)
        self.run_script("messageboxyn=Go on?", options=["--yes"])
        self.run_script("messageboxyn=Go on?", options=["--no"], code=1)
        self.assertEqual(self.run_kinsort("script", "run", "no.ecs", code=3).messages,
                         "kinsort: script: no.ecs: it does not exist; check the name and the folder\n")
        self.make_file(self.top, "utf8.ecs", b"messagebox=0,Hello!\n")
        self.assertIn("script: utf8.ecs: the file is not in UTF-16",
                      self.run_kinsort("script", "run", "utf8.ecs").messages)

    def test_bad_command_lines_say_what_is_wrong(self):
        script = self.write("exit")
        cases = [
            (["script", "run"], "script: run takes FILE"),
            (["script", "run", script, "--yes", "--no"], "choose one of --yes and --no"),
            (["script", "run", script, "--set", "x"], "--set x: write --set NAME=VALUE"),
            (["script", "run", script, "--set", "goto=1"], "This word is reserved"),
            (["script", "run", script, "--set", "count=1", "--set", "countA=1"], "It is contained in the variable"),
            (["script", "run", script, "--cwd", "nowhere"],
             "--cwd nowhere: there is no such folder, or it cannot be read; check the path"),
        ]
        for arguments, message in cases:
            with self.subTest(arguments):
                self.assertIn(message, self.run_kinsort(*arguments, code=2).messages)

    def test_a_dry_run_touches_nothing(self):
        lines = ["fileopen=?nowdir?\\out.txt", "filewritew=text", "fileclose", "var code=1", "code=call,rm -r target",
                 "shell=?nowdir?\\target", "writeregnum=Test,Number,7", "setclipboardtext=clip", "postmessage=40001",
                 "wait=60000", "messagebox=0,code", "fileopen=?nowdir?\\nowhere\\out.txt"]
        before = sorted(os.listdir(self.top))
        done = self.run_script(*lines, options=["--dry-run"])
        inner = "Z:" + self.top.replace("/", "\\")
        self.assertEqual(done.output.splitlines(), [
            f"would write: {inner}\\out.txt (appended, 12 bytes)",
            f"would start: rm -r target (in {inner}\\)",
            f"would data: 200 {inner}\\target",
            "would registry: Software\\TEV_Soft\\Vel\\Main001\\Test Number = 7",
            "would clipboard: clip",
            "would post: 273 40001 0",
        ])
        self.assertIn("Vel: 0\n", done.messages)
        self.assertIn("nowhere", done.messages)
        self.assertEqual(sorted(os.listdir(self.top)), sorted(before + ["script.ecs"]))

    def test_trace_shows_each_line_with_its_values(self):
        script = ["// nothing", "var amount=2", "if amount == 3", "amount=9", "endif", "amount=+40"]
        done = self.run_script(*script, options=["--trace"])
        self.assertEqual(done.messages, "script.ecs:2: var amount=2\n"
                                        "script.ecs:3: if amount == 3  ->  if 2 == 3\n"
                                        "script.ecs:6: amount=+40\n")

    def test_a_thousand_calls_leave_nothing_behind(self):
        temporary = os.path.join(self.top, "temporary")
        os.mkdir(temporary)
        self.environment["TMPDIR"] = temporary
        # Children, threads and descriptors of the program that runs the script, itself a child of it.
        self.make_file(self.top, "look", b"""#!/bin/sh
grep -ls "^PPid:[[:space:]]*$PPID\$" /proc/[0-9]*/status | wc -l
ls /proc/$PPID/task | wc -l
ls -l /proc/$PPID/fd | sed '1d; s/.* \\([0-9]* ->\\)/\\1/; s/[0-9]*\\]//'
""", mode=0o755)
        seen = []
        for calls in (1, 1000):
            done = self.run_script("var idx=0", "do", "idx=+1", "call=true", f"while idx < {calls}",
                                   "call=?nowdir?\\look")
            seen.append((done.messages, sorted(snapshot(self.top))))
        self.assertEqual(seen[0][0].split()[0], "1", seen[0])
        self.assertEqual(seen[1], seen[0])
        self.assertEqual(os.listdir(temporary), [])

    def test_ctrl_c_stops_a_loop_and_a_wait(self):
        for lines in (["do", "while 1 == 1"], ["wait=600000"], ["call=sleep 600"]):
            with self.subTest(lines):
                script = self.write("fileopen=started", "filewritea=x", "fileclose", *lines)
                run = subprocess.Popen([os.path.abspath(KINSORT), "script", "run", script], cwd=self.top,
                                       env=self.environment, stderr=subprocess.PIPE, start_new_session=True)
                while not os.path.exists(os.path.join(self.top, "started")):
                    self.assertIsNone(run.poll(), "ended by itself")
                os.killpg(run.pid, signal.SIGINT)
                _, messages = run.communicate(timeout=60)
                self.assertEqual(run.returncode, 1, messages)
                os.remove(os.path.join(self.top, "started"))


if __name__ == "__main__":
    unittest.main()
