"""Scripts that are too large, too wild or none at all: each ends as it should, in little memory."""

import os
import random
import signal
import subprocess
import tempfile
import unittest

from workshop import KINSORT, Workshop

MEGABYTE = (1 << 20) * (8 if os.environ.get("KINSORT_SANITIZE") else 1)  # sanitizers take several times the memory


class HostileScript(Workshop):
    # In pieces: what a process measures of its child begins with the most that it had itself.
    def write(self, *pieces):
        path = os.path.join(self.top, "script.ecs")
        with open(path, "wb") as file:
            file.write(b"\xff\xfe")
            for piece in pieces:
                file.write(piece.encode("utf-16-le"))
        return path

    # Exit code and messages of "script run", or exit code and output of "script check".
    def measure(self, action, path, megabytes=200):
        with tempfile.TemporaryFile() as said:
            streams = {"stdout": subprocess.DEVNULL, "stderr": said}
            if action == "check":
                streams = {"stdout": said, "stderr": subprocess.DEVNULL}
            child = subprocess.Popen([os.path.abspath(KINSORT), "script", action, path], cwd=self.top,
                                     stdin=subprocess.DEVNULL, env=self.environment, **streams)
            _, status, usage = os.wait4(child.pid, 0)
            child.returncode = os.waitstatus_to_exitcode(status)
            self.assertLess(usage.ru_maxrss * 1024, megabytes * MEGABYTE, f"memory of {action}")
            said.seek(0)
            return child.returncode, said.read().decode("utf-8")

    def test_fifty_megabytes(self):
        lines = ["x=1\r\n" * 10_000] * 500
        path = self.write("var x\r\ngoto end\r\n", *lines, "end:\r\nmessagebox=0,x\r\n")
        self.assertGreater(os.path.getsize(path), 50_000_000)
        self.assertEqual(self.measure("run", path, megabytes=600), (0, "Vel: \n"))
        path = self.write("var x\r\n", *lines, "messagebox=0,x\r\n")
        self.assertEqual(self.measure("run", path, megabytes=600), (0, "Vel: 1\n"))
        self.assertEqual(self.measure("check", path, megabytes=600), (0, ""))

    def test_a_finding_in_every_line(self):
        code, output = self.measure("check", self.write("x=1\r\n" * 100_000))
        self.assertEqual(code, 1)
        self.assertEqual(output.count("nothing is called"), 1000)
        self.assertTrue(output.endswith("script.ecs:1000:1: there is more; mend what stands above first\n"))
        code, output = self.measure("check", self.write("again:\r\n" * 100_000))
        self.assertEqual((code, output.count("is defined already")), (1, 1000))

    def test_a_line_without_end(self):
        path = self.write("messagebox=0,before\r\nmessagebox=0," + "a" * 40_000 + "\r\nmessagebox=0,after\r\n")
        self.assertEqual(self.measure("run", path), (0, "Vel: before\n"))
        code, output = self.measure("check", path)
        self.assertEqual(code, 1)
        self.assertIn("script.ecs:2:1: this line has 32767 characters or more: the script ends before it\n", output)

    def test_ten_thousand_labels(self):
        labels = "".join(f"l{i}:\r\n" for i in range(10_000))
        self.assertEqual(self.measure("run", self.write(labels + "messagebox=0,end")), (0, "Vel: end\n"))
        self.assertEqual(self.measure("check", self.write(labels + "goto l5")), (0, ""))
        self.assertEqual(self.measure("run", self.write(labels + "l5:\r\n")),
                         (1, "This label is already in use.\nl5:\n"))

    def test_a_hundred_thousand_variables(self):
        declared = "".join(f"var v{i:06d}\r\n" for i in range(100_000))
        path = self.write(declared + "v099999=7\r\nmessagebox=0,v099999\r\n")
        self.assertEqual(self.measure("run", path), (0, "Vel: 7\n"))
        self.assertEqual(self.measure("check", path), (0, ""))
        code, output = self.measure("check", self.write(declared, "v00000x=1\r\n" * 2000))
        self.assertEqual((code, output.count("did you mean")), (1, 1000))
        inside = "It is contained in the variable declared.\n"
        self.assertEqual(self.measure("run", self.write(declared + "var 9999\r\n")), (1, inside + "9999/v009999\n"))
        self.assertEqual(self.measure("run", self.write(declared + "var av000001b\r\n")),
                         (1, inside + "v000001/av000001b\n"))

    def test_what_never_ends(self):
        self.assertEqual(self.measure("run", self.write("again:\r\ngoto again\r\n")),
                         (1, "The number of repetitions of up too many.(5 times)\n"))
        path = self.write("include=script.ecs\r\n")
        self.assertEqual(self.measure("run", path),
                         (1, "Scripts include each other too deeply (more than 100 times).\n"
                             "script.ecs, line 1:\ninclude=script.ecs\n"))
        self.assertEqual(self.measure("check", path), (0, ""))

    def test_ctrl_c_ends_questions_that_are_always_answered(self):
        script = self.write("do\r\nmessageboxyn=Again?\r\nwhile 1 == 1\r\n")
        run = subprocess.Popen([os.path.abspath(KINSORT), "script", "run", script, "--yes"], cwd=self.top,
                               env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, start_new_session=True)
        for _ in range(1000):
            self.assertIn(b"Again?", run.stderr.readline())
        os.killpg(run.pid, signal.SIGINT)
        run.communicate(timeout=60)
        self.assertEqual(run.returncode, 1)

    def test_random_bytes(self):
        path = os.path.join(self.top, "random.ecs")
        with open(path, "wb") as file:
            file.write(random.Random(1).randbytes(1_000_000))
        self.assertEqual(self.measure("run", path), (0, ""))
        self.assertEqual(self.measure("check", path)[0], 1)


if __name__ == "__main__":
    unittest.main()
