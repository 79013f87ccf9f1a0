"""kinsort host listen, with scripts that talk to it from another process."""

import json
import os
import signal
import subprocess
import unittest

from workshop import KINSORT, Workshop


class Listener:
    """kinsort host listen in the background; `lines` is what it has printed when it has ended."""

    def __init__(self, workshop, *arguments):
        self.workshop = workshop
        self.process = subprocess.Popen([os.path.abspath(KINSORT), "host", "listen", *arguments], cwd=workshop.top,
                                        env=workshop.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE)
        workshop.addCleanup(self.process.stderr.close)
        workshop.addCleanup(self.process.stdout.close)
        workshop.addCleanup(self.process.wait)
        workshop.addCleanup(self.process.kill)
        self.begin = self.process.stderr.readline().decode()

    def stop(self, number=signal.SIGINT):
        self.process.send_signal(number)
        output, messages = self.process.communicate(timeout=60)
        self.workshop.assertEqual(self.process.returncode, 0 if number == signal.SIGINT else -number, messages)
        return output.decode().split("\n")[:-1]


class HostTest(Workshop):
    def run_script(self, *lines, **options):
        path = self.make_file(self.source, "test.ecs", "\n".join(lines).encode("utf-16"))
        return self.run_kinsort("script", "run", os.fsdecode(path), **options)

    def windows(self):
        folder = os.path.join(self.environment["XDG_RUNTIME_DIR"], "vel")
        return [name for name in os.listdir(folder) if name.startswith("window-")]

    def test_what_scripts_send_is_listed(self):
        listener = Listener(self)
        self.assertEqual(listener.begin,
                         "kinsort: listening as {6A1D93C2-4E58-4B07-9F3A-2C81D7E05B94}; Ctrl-C ends\n")
        self.run_script("folderjump=1,Z:\\tmp\\あ b", "postmessage=40001,-1", "select=*.txt",
                        "favoritejump=0,Z:\\tmp")
        self.assertCountEqual(listener.stop(), ["folderjump 200: /tmp/あ b", "numbers 273: 40001 -1",
                                                "select 800: *.txt", "favoritejump 901: 10/Z:\\tmp"])
        self.assertEqual(self.windows(), [])

    def test_json_is_one_object_a_line_and_the_class_can_be_chosen(self):
        first = Listener(self, "--json")
        second = Listener(self, "--json", "--class", "{another}")
        self.run_script("system_command=7,x\u2028y", "sendmessage=5")
        self.assertEqual(second.stop(), [])
        told = [json.loads(line) for line in first.stop()]
        self.assertEqual(told[0] | {"sender": 0}, {"kind": "data", "code": 7, "sender": 0, "text": "x\u2028y"})
        self.assertEqual(told[1], {"kind": "numbers", "message": 273, "first": 5, "second": 0})
        done = self.run_kinsort("host", "listen", "--class", "x" * 257, code=2)
        self.assertIn("--class takes a name of 1 to 256 characters", done.messages)

    def test_jumps_are_shown_in_the_file_manager(self):
        tools = os.path.join(self.top, "tools")
        log = os.path.join(self.top, "log")
        self.make_file(tools, "dbus-send", f"#!/bin/sh\necho \"$@\" >> '{log}'\n".encode(), mode=0o755)
        self.environment["PATH"] = tools + ":" + self.environment["PATH"]
        item = os.fsdecode(self.make_file(self.target, "a,b.txt"))
        listener = Listener(self, "--open")
        self.run_script("folderjump=0,Z:" + self.target.replace("/", "\\"),
                        "filejump=0,Z:" + item.replace("/", "\\"), "folderjump=0,Z:\\none", "select=Z:\\tmp")
        self.assertEqual(len(listener.stop()), 4)
        with open(log, encoding="utf-8") as file:
            calls = [line.split()[-2:] for line in file]
        uri = "file://" + self.target
        self.assertEqual(calls, [["array:string:" + uri, "string:"],
                                 ["array:string:" + uri + "/a%2Cb.txt", "string:"]])

    def test_a_listener_that_was_killed_leaves_nothing_that_matters(self):
        listener = Listener(self)
        self.assertEqual(len(self.windows()), 2)
        listener.stop(signal.SIGKILL)
        self.run_script("postmessage=1", "select=x")
        self.assertEqual(self.windows(), [])


if __name__ == "__main__":
    unittest.main()
