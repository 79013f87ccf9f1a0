"""The demonstration shows the main job and leaves nothing behind, also when it is interrupted."""

import os
import signal
import subprocess
import unittest

from workshop import KINSORT, SOURCE, Workshop


class Demo(Workshop):
    def start(self):
        self.environment["TMPDIR"] = self.source
        running = subprocess.Popen([os.path.join(SOURCE, "scripts/demo/demo.sh"), os.path.abspath(KINSORT)],
                                   env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8")
        self.addCleanup(running.stdout.close)
        self.addCleanup(running.stderr.close)
        return running

    def test_whole(self):
        running = self.start()
        output, _ = running.communicate()
        self.assertEqual(running.returncode, 0)
        for line in ("\nMoved 18 items.\n", "\nTook back 18 items.\n",
                     "# exit code 0; Downloads holds 19 files again, Documents 0.\n"):
            self.assertIn(line, output)
        self.assertEqual(os.listdir(self.source), [])

    def test_interrupted(self):
        running = self.start()
        running.stdout.readline()
        running.send_signal(signal.SIGTERM)
        running.stdout.read()
        self.assertEqual(running.wait(), 143)
        self.assertEqual(os.listdir(self.source), [])


if __name__ == "__main__":
    unittest.main()
