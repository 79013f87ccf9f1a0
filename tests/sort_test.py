"""kinsort sort, undo and redo on real folders: where everything is, and that undo brings back every byte."""

import os
import signal
import subprocess
import unittest

from workshop import KINSORT, Workshop, snapshot


class Sort(Workshop):
    def sort(self, *arguments, **options):
        return self.run_kinsort("sort", "--to", self.target, *arguments, **options)

    def make_selection(self):
        """Files, a link, a folder with content and an empty one, with modes and times of their own."""
        self.make_folders("photos", "reports/2023", "ひらがな")
        self.make_file(self.source, "photo 1.jpg", b"\0" * 70000, 0o600)
        self.make_file(self.source, "photo 2.jpg", b"", 0o444)
        self.make_file(self.source, "Report.docx", os.urandom(5000), 0o755, 1_500_000_000_000_000_001)
        self.make_file(self.source, "ヒラガナ.txt", "あ".encode())
        self.make_file(self.source, b"photo \xff\n\x1b[1m.png", b"odd")
        self.make_file(self.source, "reports old/deep/er/a.txt", b"a")
        os.makedirs(os.path.join(self.source, "photos empty"))
        os.symlink("photo 1.jpg", os.path.join(self.source, "photo link"))

    def test_move_undo_redo_bring_everything_where_it_belongs(self):
        self.make_selection()
        self.make_file(self.target, "photos/other.jpg")
        before = snapshot(self.source), snapshot(self.target)
        times = snapshot(self.top, with_folder_times=True)
        done = self.sort("--move", *self.items())
        self.assertRegex(done.output, r"^Moved 8 items\.\nTake it back with: kinsort undo \d+\n$")
        self.assertEqual(done.messages, "")
        self.assertEqual(os.listdir(self.source), [])
        after = snapshot(self.target)
        for name, kept in before[0].items():
            top = name.split(b"/")[0].lower()
            folder = b"photos" if top.startswith(b"photo") else b"reports" if top.startswith(b"report") else "ひらがな".encode()
            self.assertEqual(after[folder + b"/" + name], kept, name)
        self.assertEqual(len(after), len(before[0]) + len(before[1]))

        undone = self.run_kinsort("undo")
        self.assertRegex(undone.output, r"^Took back 8 items\.\nDo it again with: kinsort redo \d+\n$")
        self.assertEqual((snapshot(self.source), snapshot(self.target)), before)
        now = snapshot(self.top, with_folder_times=True)
        self.assertEqual({name: kept for name, kept in now.items() if not name.startswith(b"state")}, times)
        self.assertRegex(self.run_kinsort("redo").output, r"^Did again 8 items\.\n")
        self.assertEqual((snapshot(self.source), snapshot(self.target)), ({}, after))
        self.run_kinsort("undo")
        self.assertEqual((snapshot(self.source), snapshot(self.target)), before)

    def test_copy_leaves_the_originals_and_undo_removes_the_copies(self):
        for durability in "content", "journal":
            with self.subTest(durability):
                self.setUp()
                self.make_selection()
                before = snapshot(self.source), snapshot(self.target)
                self.sort("--copy", f"--durability={durability}", "--threads=1", *self.items())
                self.assertEqual(snapshot(self.source), before[0])
                self.assertEqual(snapshot(self.target)[b"photos/photo 1.jpg"], before[0][b"photo 1.jpg"])
                self.assertEqual(len(snapshot(self.target)), len(before[0]) + len(before[1]))
                self.run_kinsort("undo")
                self.assertEqual((snapshot(self.source), snapshot(self.target)), before)

    def conflict(self):
        self.make_folders("alpha")
        new = self.make_file(self.source, "alpha.txt", b"new", 0o600)
        self.make_file(self.target, "alpha/alpha.txt", b"old", 0o644, 1_400_000_000_000_000_000)
        return new

    def test_conflicts_follow_the_policy_and_undo_restores_what_was_replaced(self):
        for policy, names, code in [
            ("skip", {b"alpha.txt": b"old"}, 3),
            ("replace", {b"alpha.txt": b"new"}, 0),
            ("keep-both", {b"alpha.txt": b"old", b"alpha (2).txt": b"new"}, 0),
        ]:
            with self.subTest(policy):
                self.setUp()
                item = self.conflict()
                before = snapshot(self.source), snapshot(self.target)
                self.sort("--move", f"--on-conflict={policy}", item, code=code)
                found = {name.split(b"/")[1]: kept[3] for name, kept in snapshot(self.target).items() if b"/" in name}
                self.assertEqual(found, names)
                self.assertEqual(os.path.exists(item), policy == "skip")
                if policy != "skip":
                    self.run_kinsort("undo")
                self.assertEqual((snapshot(self.source), snapshot(self.target)), before)

    def test_nobody_to_ask_means_skip_and_is_said(self):
        item = self.conflict()
        other = self.make_file(self.source, "alpha beta.txt")
        done = self.sort("--move", item, other, input=b"r\nr\n", code=1)
        self.assertIn("kinsort: some names are taken and nobody can be asked here, so these items are skipped; choose "
                      "with --on-conflict\n", done.messages)
        self.assertIn(f"kinsort: {self.source}/alpha.txt: skipped: the name is taken", done.messages)
        self.assertTrue(done.output.startswith("Moved 1 item, 1 skipped.\n"), done.output)
        with open(os.path.join(self.target, "alpha/alpha.txt"), "rb") as file:
            self.assertEqual(file.read(), b"old")

    def test_items_without_a_folder_stay_and_are_listed(self):
        self.make_folders("alpha")
        self.make_file(self.source, "alpha.txt")
        self.make_file(self.source, "\x1bzzz")
        done = self.sort("--move", *self.items(), f"{self.source}/gone", code=1)
        self.assertTrue(done.output.startswith(
            f"Moved 1 item, 1 failed.\n1 item without a similar folder, left in place:\n  {self.source}/\\x1bzzz\n"), done.output)
        self.assertEqual(self.items(), [os.fsencode(self.source) + b"/\x1bzzz"])
        quiet = self.sort("--move", "-q", *self.items(), code=3)
        self.assertEqual(quiet.output, f"1 item without a similar folder, left in place:\n  {self.source}/\\x1bzzz\n")

    def test_dry_run_changes_nothing(self):
        self.make_selection()
        before = snapshot(self.top)
        planned = self.run_kinsort("plan", "--to", self.target, *self.items()).output
        self.assertEqual(self.sort("--dry-run", *self.items()).output, planned)
        self.assertEqual(self.sort("--move", "--dry-run", *self.items()).messages, "kinsort: nothing was changed\n")
        self.assertEqual(snapshot(self.top), before)

    def test_dry_run_tells_what_would_become_of_taken_names(self):
        self.conflict()
        self.make_file(self.source, "other/alpha.txt")
        items = [*self.items(), f"{self.source}/other/alpha.txt", f"{self.target}/alpha/alpha.txt"]
        for policy, prospect in (("ask", "ask what to do"), ("skip", "skip these items"),
                                 ("replace", "replace what is there"), ("keep-both", "add a number to the new names")):
            told = self.sort("--dry-run", f"--on-conflict={policy}", *items, code=1).messages
            self.assertIn(f"kinsort: 2 names are taken in the target folder: sort would {prospect}\n", told)

    def test_a_journal_that_cannot_be_written_is_named_and_nothing_is_done(self):
        self.conflict()
        self.make_file(self.top, "no-folder")
        self.environment["XDG_STATE_HOME"] = f"{self.top}/no-folder"
        before = snapshot(self.top)
        outcome = self.sort("--move", "--on-conflict=replace", *self.items(), code=3)
        self.assertIn(f"kinsort: the undo journal in {self.top}/no-folder/vel/undo: ", outcome.messages)
        self.assertEqual(outcome.output, "")
        self.assertEqual(snapshot(self.top), before)

    def test_json_outcome(self):
        item = self.conflict()
        self.make_file(self.source, "alpha 2.txt")
        self.make_file(self.source, "zzz")
        outcome = self.run_json("sort", "--to", self.target, "--move", "--on-conflict=skip", *self.items(),
                                "/no/such", code=1)
        self.assertEqual({key: outcome[key] for key in ("action", "done", "skipped", "failed", "not_reached",
                                                        "no_candidate", "cancelled", "error")},
                         {"action": "move", "done": 1, "skipped": 1, "failed": 1, "not_reached": 0,
                          "no_candidate": 1, "cancelled": False, "error": None})
        self.assertEqual([(entry["item"], entry["outcome"], entry["reason"]) for entry in outcome["items"]],
                         [(os.fsdecode(item), "skipped", "conflict-skipped"),
                          (f"{self.source}/zzz", "no-candidate", "no-candidate"), ("/no/such", "failed", "not-found")])
        undone = self.run_json("undo", str(outcome["batch"]))
        self.assertEqual((undone["batch"], undone["action"], undone["done"]), (outcome["batch"], "undo", 1))

    def test_a_polite_kill_stops_cleanly_and_can_be_undone(self):
        self.make_folders("alpha")
        for number in range(1500):
            self.make_file(self.source, f"alpha {number}", str(number).encode())
        before = snapshot(self.source), snapshot(self.target)
        running = subprocess.Popen([os.path.abspath(KINSORT), "sort", "--to", self.target, "--copy", "-f", "-"],
                                   env=self.environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE)
        self.addCleanup(running.stdout.close)
        self.addCleanup(running.stderr.close)
        running.stdin.write(b"\n".join(self.items()))
        running.stdin.close()
        while running.poll() is None and not os.listdir(os.path.join(self.target, "alpha")):
            pass
        for _ in range(3):  # impatience does no harm
            running.send_signal(signal.SIGINT)
        messages = running.stderr.read().decode()
        output = running.stdout.read().decode()
        self.assertIn(running.wait(), (0, 1))
        if running.returncode == 1:
            self.assertIn("kinsort: stopped; every item is either wholly done or untouched\n", messages)
        self.assertIn("Take it back with: kinsort undo", output)
        self.assertEqual(snapshot(self.source), before[0])
        for name, kept in snapshot(self.target).items():
            if b"/" in name:
                self.assertEqual(kept, before[0][name.split(b"/")[1]], "a copy is whole or not there")
        self.run_kinsort("undo")
        self.assertEqual((snapshot(self.source), snapshot(self.target)), before)


if __name__ == "__main__":
    unittest.main()
