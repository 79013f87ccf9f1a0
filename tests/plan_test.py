"""kinsort plan on real folders."""

import os
import subprocess
import unittest
import urllib.parse

from workshop import HOST_VARIABLE, KINSORT, Workshop


class Plan(Workshop):
    def plan(self, *arguments, **options):
        """{item's name: (folder's name or None, score)}"""
        rows = self.run_json("plan", "--to", self.target, *arguments, **options)
        return {os.path.basename(row["item"]): (row["folder"] and os.path.relpath(row["folder"], self.target),
                                                row["score"]) for row in rows}

    def test_finds_the_folder_that_looks_most_like_the_name(self):
        self.make_folders("report", "ひらがな", "abc", "ab", "12345", ".git")
        names = ["Report2023_final.docx", "ヒラガナ.txt", "ＡＢＣ(1).txt", "ab.txt", "7a", "x.gitignore"]
        for name in names:
            self.make_file(self.source, name)
        rows = self.plan(*self.items(), code=1)
        self.assertEqual(rows, {
            "Report2023_final.docx": ("report", 5),
            "ヒラガナ.txt": ("ひらがな", 3),
            "ＡＢＣ(1).txt": ("abc", 2),
            "ab.txt": ("ab", 1),
            "7a": (None, 0),
            "x.gitignore": (".git", 3),
        })

    def test_output_for_people_is_plain_without_a_terminal(self):
        self.make_folders("photos", "phone")
        self.make_file(self.source, "photo.jpg")
        done = self.run_kinsort("plan", "--to", self.target, os.path.join(self.source, "photo.jpg"))
        self.assertEqual(done.output, f"{self.source}/photo.jpg -> photos\n")
        self.assertEqual(done.messages, "")
        scored = self.run_kinsort("plan", "--to", self.target, "--scores", os.path.join(self.source, "photo.jpg"))
        self.assertEqual(scored.output, f"{self.source}/photo.jpg -> photos (score 4, then phone 2)\n")
        row, = self.run_json("plan", "--to", self.target, "-s", os.path.join(self.source, "photo.jpg"))
        self.assertEqual((row["runner_up"], row["runner_up_score"]), (f"{self.target}/phone", 2))
        weak = self.run_kinsort("plan", "--to", self.target, "--min-score=5", f"{self.source}/photo.jpg", code=1)
        self.assertEqual(weak.output, f"{self.source}/photo.jpg -> (no similar folder)\n")
        self.assertEqual(weak.messages, "kinsort: 1 item without a similar folder\n")

    def test_hostile_names_come_through_exactly(self):
        self.make_folders("name", b"na\xffme\\x")
        names = [b"name \x1b[31m\n\t.txt", b"name \xff\xfe", b"name \\ back", b"name \"quoted\"", b"[name]", b"*name?",
                 "name \u202e\ue001 \uf041".encode(), b"-name", b"~name", "na\u0301me".encode(), b"n" * 240 + b"name"]
        for name in names:
            self.make_file(self.source, name)
        rows = self.run_json("plan", "--to", self.target, "--", *self.items())
        exact = [urllib.parse.unquote_to_bytes(row["item_uri"][len("file://"):]) if "item_uri" in row
                 else row["item"].encode() for row in rows]
        self.assertEqual(exact, self.items())
        self.assertEqual([row["item_uri"] for row in rows if "item_uri" in row],
                         [f"file://{self.source}/name%20%FF%FE"])
        # What it prints, it takes: by address, and by NUL-ended list.
        again = self.run_json("plan", "--to", self.target, f"file://{self.source}/name%20%FF%FE")
        self.assertEqual(again, [row for row in rows if "item_uri" in row])
        listed = self.run_json("plan", "--to", self.target, "--files-from", "-", input=b"\0".join(self.items()) + b"\0")
        self.assertEqual(listed, rows)
        shown = self.run_kinsort("plan", "--to", self.target, "--", *self.items()).output
        self.assertEqual(len(shown.splitlines()), len(names))
        self.assertNotIn("\x1b", shown)
        self.assertNotIn("\u202e", shown)
        self.assertIn("name \\x1b[31m\\x0a\\x09.txt", shown)

    def test_items_from_lists_addresses_and_relative_paths(self):
        self.make_folders("alpha", "beta")
        self.make_file(self.source, "alpha 1.txt")
        self.make_file(self.source, "beta 2.txt")
        os.symlink("nowhere", os.path.join(self.source, "alpha link"))
        os.makedirs(os.path.join(self.environment["HOME"], "beta docs"))
        listing = os.path.join(self.top, "list")
        with open(listing, "w") as file:
            file.write("alpha 1.txt\r\n\r\nalpha link\r\n../target/../source/beta 2.txt\r\n")
        rows = self.run_json("plan", "--to", "../target", "--files-from", listing, "~/beta docs/",
                             f"file://localhost{self.source}/alpha%201.txt", cwd=self.source)
        self.assertEqual([row["item"] for row in rows],
                         [f"{self.environment['HOME']}/beta docs", f"{self.source}/alpha 1.txt",
                          f"{self.source}/alpha 1.txt", f"{self.source}/alpha link", f"{self.source}/beta 2.txt"])

    def test_missing_items_are_named_and_the_others_go_on(self):
        self.make_folders("alpha")
        self.make_file(self.source, "alpha.txt")
        done = self.run_kinsort("plan", "--to", self.target, "gone", f"{self.source}/alpha.txt",
                                f"{self.source}/alpha.txt/x", "file://server/x", code=1)
        self.assertEqual(done.output, f"{self.source}/alpha.txt -> alpha\n")
        self.assertEqual(done.messages.splitlines()[0], "kinsort: gone: it does not exist; check the name and the folder")
        self.assertEqual(len(done.messages.splitlines()), 3)
        self.run_kinsort("plan", "--to", self.target, "gone", code=3)

    def test_what_cannot_be_planned(self):
        self.make_file(self.source, "a.txt")
        file = f"{self.source}/a.txt"
        for arguments, code, message in [
                ((file, "--to", f"{self.top}/none"), 3,
                 f"--to {self.top}/none: there is no such folder, or it cannot be read; check the path"),
                ((file, "--to", file), 3,
                 f"--to {file}: this is a file; name a folder"),
                ((file, "--to", self.target), 3,
                 f"{self.target}: there are no sub-folders to sort into; create some, or choose another folder with --to"),
                ((file,), 2, "plan: name the folder whose sub-folders the items go into: --to DIR"),
                (("--to", self.source), 2, "no items: name files or folders, or give a list with --files-from"),
                (("--to", self.source, "-f", "-"), 3,
                 "--files-from -: the list of items is empty; there is nothing to do"),
                (("--to", self.source, "-f", "none"), 3,
                 "--files-from none: it does not exist; check the name and the folder"),
        ]:
            done = self.run_kinsort("plan", *arguments, code=code)
            self.assertEqual(done.messages.splitlines()[0], "kinsort: " + message)
            self.assertEqual(done.output, "")

    def test_takes_the_items_that_a_host_hands_over(self):
        self.make_folders("alpha", "beta")
        self.make_file(self.source, "alpha.txt")
        self.make_file(self.source, "beta \\x.txt")
        inner = "Z:" + self.source.replace("/", "\\")
        block = "".join(field + "\t" for field in
                        ["2", "0", inner, "", inner + "\\alpha.txt", inner + "\\beta \uf05cx.txt"]).encode("utf-16-le")
        folder = os.path.join(self.environment["XDG_RUNTIME_DIR"], "vel")
        os.mkdir(folder, 0o700)
        with open(os.open(os.path.join(folder, "ShareMem_4120_7"), os.O_CREAT | os.O_WRONLY, 0o600), "wb") as file:
            file.write(block + b"\0\0")
        self.environment[HOST_VARIABLE] = f"0:0:4120:7:{len(block) + 2}::::Share:"
        rows = self.run_json("plan", "--to", self.target)
        self.assertEqual([row["item"] for row in rows], [f"{self.source}/alpha.txt", f"{self.source}/beta \\x.txt"])
        # Named items come first; the hand-off is then not looked at.
        self.assertEqual(len(self.run_json("plan", "--to", self.target, f"{self.source}/alpha.txt")), 1)

    def test_large_lists_and_lost_readers(self):
        self.make_folders("alpha", "beta")
        self.make_file(self.source, "alpha.txt")
        many = (f"{self.source}/alpha.txt\n" * 50000).encode()
        rows = self.run_json("plan", "--to", self.target, "-f", "-", input=many)
        self.assertEqual(len(rows), 50000)
        with open("/dev/full", "wb") as full:
            done = subprocess.run([os.path.abspath(KINSORT), "plan", "--to", self.target, f"{self.source}/alpha.txt"],
                                  env=self.environment, stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"the output could not be written: no space left", done.stderr)


if __name__ == "__main__":
    unittest.main()
