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

    def tear(self, *older):
        """Kills a sort in its middle, after the items `older` were sorted, each as a batch. Their batches, the number of
        the torn one, and the content of each of its items."""
        for _ in range(5):  # a kill can come too late
            self.setUp()
            self.make_folders("alpha", "beta")
            batches = [self.sort_one(name) for name in older]
            for number in range(1500):
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
            torn = [row["batch"] for row in self.run_json("history") if row["state"] == "unfinished"]
            if torn:
                return batches, torn[0], kept
        self.fail("no kill came in time: the test did not test anything; raise the count")

    # How recovery is told to finish and to take back is tried by scripts/torture/kill_sorts.py.
    def test_a_torn_batch_is_told_of_left_and_finished(self):
        _, torn, kept = self.tear()
        warned = self.run_kinsort("plan", "--to", self.target, f"{self.target}/alpha").messages
        self.assertEqual(warned, f"kinsort: batch {torn} was interrupted and is unfinished; finish it or take it back with: "
                                 "kinsort recover\n")
        before = snapshot(self.top)
        self.run_kinsort("recover", "--leave", code=3)
        self.assertEqual(snapshot(self.top), before)
        self.run_kinsort("recover")  # nobody can be asked
        self.assertEqual({name: value[3] for name, value in snapshot(f"{self.target}/alpha").items()}, kept)
        self.assertEqual(self.run_kinsort("recover", code=3).messages, "kinsort: there is nothing to recover\n")

    def test_undo_without_a_number_does_not_pass_over_an_interrupted_batch(self):
        (older,), _, _ = self.tear("beta")
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


if __name__ == "__main__":
    unittest.main()
