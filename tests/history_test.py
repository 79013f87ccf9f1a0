"""kinsort history, undo and redo by number, and recover after a kill."""

import os
import re
import subprocess
import unittest

from workshop import KINSORT, Workshop, snapshot


class History(Workshop):
    def sort_one(self, name):
        self.make_file(self.source, name)
        return self.run_json("sort", "--to", self.target, "--move", f"{self.source}/{name}")["batch"]

    def test_nothing_yet(self):
        self.assertEqual(self.run_kinsort("history").messages, "kinsort: nothing was sorted yet\n")
        self.assertEqual(self.run_json("history"), [])
        self.assertEqual(self.run_kinsort("undo", code=3).messages,
                         "kinsort: there is nothing to take back; 'kinsort history' lists the batches\n")
        self.assertEqual(self.run_kinsort("redo", code=3).messages,
                         "kinsort: there is nothing to do again; 'kinsort history' lists the batches\n")
        self.assertEqual(self.run_kinsort("recover", code=3).messages, "kinsort: there is nothing to recover\n")
        self.assertEqual(snapshot(self.environment["XDG_STATE_HOME"]).keys() - {b"vel", b"vel/undo"}, set())

    def test_lists_batches_newest_first_and_undoes_any_of_them(self):
        self.make_folders("alpha", "beta")
        first = self.sort_one("alpha 1")
        second = self.sort_one("beta 2")
        rows = self.run_json("history")
        self.assertEqual([row["batch"] for row in rows], [second, first])
        self.assertGreater(second, first)
        self.assertEqual({key: rows[0][key] for key in ("state", "action", "done", "failed", "skipped", "folder",
                                                        "first_item", "cancelled")},
                         {"state": "done", "action": "move", "done": 1, "failed": 0, "skipped": 0,
                          "folder": self.target, "first_item": "beta 2", "cancelled": False})
        self.assertRegex(rows[0]["started"], r"^20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        line = self.run_kinsort("history").output.splitlines()[0]
        self.assertRegex(line, rf"^{second}  20\d\d-\d\d-\d\d \d\d:\d\d  done        Moved 1 item, into "
                               rf"{re.escape(self.target)} \(beta 2\)$")

        self.run_kinsort("undo", str(first))
        self.assertEqual(os.listdir(self.source), ["alpha 1"])
        self.assertEqual([row["state"] for row in self.run_json("history")], ["done", "undone"])
        again = self.run_kinsort("undo", str(first), code=3)
        self.assertEqual(again.messages, f"kinsort: batch {first}: this cannot be done with it now; 'kinsort history' "
                                         "shows its state\n")
        self.run_kinsort("redo")
        self.assertEqual(os.listdir(self.source), [])
        self.assertEqual(self.run_kinsort("undo", "987654321", code=3).messages,
                         "kinsort: batch 987654321: there is no such batch; 'kinsort history' lists them\n")

    def test_the_journal_is_private(self):
        self.make_folders("alpha")
        self.sort_one("alpha")
        folder = os.path.join(self.environment["XDG_STATE_HOME"], "vel/undo")
        self.assertEqual(os.stat(folder).st_mode & 0o777, 0o700)

    def kill_while_sorting(self, count):
        self.make_folders("alpha")
        for number in range(count):
            self.make_file(self.source, f"alpha {number}", os.urandom(2000))
        kept = {name: value[3] for name, value in snapshot(self.source).items()}
        running = subprocess.Popen([os.path.abspath(KINSORT), "sort", "--to", self.target, "--move", "-f", "-"],
                                   env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        running.stdin.write(b"\0".join(self.items()))
        running.stdin.close()
        while running.poll() is None and not os.listdir(os.path.join(self.target, "alpha")):
            pass
        running.kill()
        running.wait()
        return kept

    def check_recovery(self, option, home):
        """After a kill everything is found again, wherever the kill hit."""
        kept = self.kill_while_sorting(1500)
        torn = [row for row in self.run_json("history") if row["state"] == "unfinished"]
        if torn:
            warned = self.run_kinsort("plan", "--to", self.target, f"{self.target}/alpha", code=0)
            self.assertIn(f"batch {torn[0]['batch']} was interrupted and is unfinished", warned.messages)
            self.assertIn("kinsort recover", warned.messages)
        self.run_kinsort("recover", *option, code=0 if torn else 3)
        if not torn and option == ["--undo"]:
            self.run_kinsort("undo")
        self.assertEqual({name: value[3] for name, value in snapshot(home).items() if value[3] is not None}, kept)
        self.assertEqual(self.run_kinsort("recover", code=3).messages, "kinsort: there is nothing to recover\n")
        return bool(torn)

    def test_recover_finishes_or_takes_back(self):
        cases = [(["--undo"], "source"), (["--finish"], "target/alpha"), ([], "target/alpha")]
        hits = 0
        for option, home in cases:
            with self.subTest(option):
                self.setUp()
                hits += self.check_recovery(option, os.path.join(self.top, home))
        self.assertGreater(hits, 0, "no kill came in time: the test did not test anything; raise the count")

    def test_undo_without_a_number_does_not_pass_over_an_interrupted_batch(self):
        torn = []
        for _ in range(5):  # a kill can come too late
            self.setUp()
            self.make_folders("beta")
            older = self.sort_one("beta")
            self.kill_while_sorting(1500)
            torn = [row for row in self.run_json("history") if row["state"] == "unfinished"]
            if torn:
                break
        self.assertTrue(torn, "no kill came in time: the test did not test anything; raise the count")
        before = snapshot(self.top)
        refused = self.run_kinsort("undo", code=3).messages
        self.assertIn(f"nothing was changed; for batch {older} all the same: kinsort undo {older}\n", refused)
        self.assertEqual(snapshot(self.top), before)

    def test_undo_says_what_comes_after_a_batch_that_is_stuck(self):
        self.make_folders("alpha", "beta")
        first = self.sort_one("alpha")
        second = self.sort_one("beta")
        self.make_file(self.target, "beta/beta", b"edited")
        stuck = self.run_kinsort("undo", code=3)
        self.assertTrue(stuck.messages.startswith(f"kinsort: {self.target}/beta/beta: not taken back: it was changed "),
                        stuck.messages)
        self.assertTrue(stuck.messages.endswith(f"\nkinsort: nothing more of batch {second} can be taken back as things "
                                                f"are; the next one would be: kinsort undo {first}\n"), stuck.messages)
        self.run_kinsort("undo", str(first))

    def test_recover_can_leave_it(self):
        self.kill_while_sorting(1500)
        torn = [row for row in self.run_json("history") if row["state"] == "unfinished"]
        before = snapshot(self.top)
        self.run_kinsort("recover", "--leave", code=3)
        self.assertEqual(snapshot(self.top), before)
        self.assertEqual([row for row in self.run_json("history") if row["state"] == "unfinished"], torn)


if __name__ == "__main__":
    unittest.main()
