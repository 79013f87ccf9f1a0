"""kinsort integrate: what desktops and file managers read, for one user and for all, and nothing of others touched."""

import configparser
import json
import os
import re
import shlex
import shutil
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

from open_test import STAND_IN
from workshop import KINSORT, SOURCE, Workshop, snapshot

BUILD = Path(KINSORT).resolve().parent.parent
OTHERS = """<?xml version="1.0" encoding="UTF-8"?>
<actions>
<action><name>Open Terminal Here</name><unique-id>1-1</unique-id><command>exo-open %f</command>
\t<patterns>*</patterns><directories/></action>

</actions>
<!-- the end -->
"""
SCRIPT_ENGLISH = "Sort into similar folders"
SCRIPT_JAPANESE = "似ている名前のフォルダーへ分類"


def entry(path):
    parser = configparser.ConfigParser(interpolation=None, delimiters="=")
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return parser


def exec_words(value):
    """The words of an Exec key: the file's escapes, then double quotes with theirs, then doubled percent signs."""
    value = re.sub(r"\\(.)", lambda m: {"s": " ", "n": "\n", "t": "\t"}.get(m.group(1), m.group(1)), value)
    words = [re.sub(r"\\(.)", r"\1", quoted) or plain
             for quoted, plain in re.findall(r'"((?:\\.|[^"\\])*)"|(\S+)', value)]
    return [word.replace("%%", "%") for word in words]


class Integrate(Workshop):
    def setUp(self):
        super().setUp()
        self.home = Path(self.environment["HOME"])
        self.data = self.home / ".local/share"
        self.uca = self.home / ".config/Thunar/uca.xml"
        self.environment |= {"XDG_CONFIG_DIRS": self.top + "/none:" + self.top + "/xdg"}

    def install(self, folder):
        """A copy of the program and its templates below `folder`; the path of the program."""
        prefix = Path(self.top) / folder
        (prefix / "bin").mkdir(parents=True)
        shutil.copy2(KINSORT, prefix / "bin")
        shutil.copytree(BUILD / "vel/desktop", prefix / "lib/vel/desktop")
        return str(prefix / "bin" / "kinsort")

    def integrate(self, *arguments, **options):
        return self.run_kinsort("integrate", *arguments, **options)

    def test_takes_away_exactly_what_it_brought(self):
        programs = Path(self.top) / "programs"
        programs.mkdir()
        for name in ("nemo", "thunar"):
            (programs / name).touch(mode=0o755)
        self.environment["PATH"] += f":{programs}"
        (self.data / "applications").mkdir(parents=True)
        before = snapshot(self.home)
        would = self.integrate("--dry-run").output
        self.assertEqual(snapshot(self.home), before)
        wrote = self.integrate().output
        self.assertEqual(would.replace("would write", "wrote"), wrote)
        for path, is_there in (("applications/kinsort.desktop", True), ("nemo/actions/kinsort.nemo_action", True),
                               ("icons/hicolor/scalable/apps/kinsort.svg", True),
                               ("kio/servicemenus/kinsort.desktop", False), ("nautilus", False)):
            self.assertEqual((self.data / path).exists(), is_there, path)
        self.assertTrue(self.uca.exists())
        self.integrate("kde", "nautilus", "caja")
        self.assertTrue(os.access(self.data / "kio/servicemenus/kinsort.desktop", os.X_OK))
        first = snapshot(self.home)
        self.integrate()
        self.assertEqual({path: what[-1] for path, what in snapshot(self.home).items()},
                         {path: what[-1] for path, what in first.items()}, "a second time changes nothing")
        self.integrate("--remove", "nemo")
        self.assertFalse((self.data / "nemo/actions/kinsort.nemo_action").exists())
        self.integrate("--remove")
        self.assertEqual([p for p in self.home.rglob("*") if not p.is_dir()], [])
        self.assertIn("nothing to remove", self.integrate("--remove").messages)
        self.assertIn("integrate: takes menu, kde, nemo, nautilus, caja or thunar, not 'gnome'",
                      self.integrate("gnome", code=2).messages)

    def test_entries_are_valid(self):
        for tool in ("desktop-file-validate", "appstreamcli"):
            self.assertIsNotNone(shutil.which(tool), f"{tool} is missing: run scripts/setup.sh")
        self.integrate("menu", "kde", "nemo")
        for path in (self.data / "applications/kinsort.desktop", BUILD / "desktop/applications/kinsort.desktop"):
            done = subprocess.run(["desktop-file-validate", path], capture_output=True, text=True)
            self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""), path)
        done = subprocess.run(["appstreamcli", "validate", "--no-net", "--pedantic",
                               os.path.join(SOURCE, "desktop/app.kinsort.kinsort.metainfo.xml")],
                              capture_output=True, text=True)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        ElementTree.parse(self.data / "icons/hicolor/scalable/apps/kinsort.svg")

        for path in (self.data / "applications/kinsort.desktop", self.data / "kio/servicemenus/kinsort.desktop",
                     self.data / "nemo/actions/kinsort.nemo_action"):
            groups = entry(path)
            for name, group in groups.items():
                for key in ("Name", "GenericName", "Comment", "Keywords", "X-KDE-Submenu"):
                    if key in group and group[key] != "Kinsort":
                        self.assertRegex(group[f"{key}[ja]"], r"[^\x00-\x7f]", f"{path} {name} {key}")
            for action in groups.get("Desktop Entry", "Actions", fallback="").split(";")[:-1]:
                self.assertIn(f"Desktop Action {action}", groups)
        undo = entry(self.data / "applications/kinsort.desktop")["Desktop Action undo"]
        self.assertEqual(exec_words(undo["Exec"]), [str(Path(KINSORT).resolve()), "undo", "--notify"])

    # Wherever the program lies, each file names it so that its reader finds it.
    def test_program_with_an_odd_path(self):
        program = self.install("o'p\"t `$x` \\ 100% & <é>")
        subprocess.run([program, "integrate", "menu", "kde", "nemo", "thunar", "nautilus", "caja"],
                       env=self.environment, check=True, stdout=subprocess.DEVNULL)
        for path, group in (("applications/kinsort.desktop", "Desktop Entry"),
                            ("kio/servicemenus/kinsort.desktop", "Desktop Action move")):
            words = exec_words(entry(self.data / path)[group]["Exec"])
            self.assertEqual(words, [program, "open", *(["/m"] if "kio" in path else []), "%F"])
        nemo = entry(self.data / "nemo/actions/kinsort.nemo_action")["Nemo Action"]["Exec"]
        self.assertEqual(shlex.split(nemo), [program, "open", "%U"])
        action = ElementTree.parse(self.uca).find("action")
        self.assertEqual([word.replace("%%", "%") for word in shlex.split(action.find("command").text)],
                         [program, "open", "%F"])

        dialog = Path(program).parent.parent / "lib/vel/command/Default/Kinsort"
        dialog.parent.mkdir(parents=True)
        dialog.write_text(STAND_IN)
        dialog.chmod(0o755)
        report = os.path.join(self.top, "report.json")
        item = os.fsdecode(self.make_file(self.source, "a b\n%.txt"))
        for variable, folder in (("NAUTILUS", self.data / "nautilus/scripts"),
                                 ("CAJA", self.home / ".config/caja/scripts")):
            selection = "".join(Path(path).as_uri() + "\n" for path in (item, self.target))
            done = subprocess.run([folder / SCRIPT_ENGLISH], cwd=self.top, stderr=subprocess.PIPE,
                                  env=self.environment | {f"{variable}_SCRIPT_SELECTED_URIS": selection,
                                                          "STAND_IN_REPORT": report, "DISPLAY": ":99"})
            self.assertEqual(done.returncode, 7, done.stderr)
            with open(report, encoding="utf-8") as file:
                fields = json.load(file)["fields"]
            self.assertEqual(fields[0], "2")
            self.assertEqual(fields[5], "Z:" + self.target.replace("/", "\\"))
            os.unlink(report)

    # The action of the desktop entry has no terminal to speak on.
    def test_undo_tells_the_desktop(self):
        programs = Path(self.top) / "programs"
        programs.mkdir()
        told = Path(self.top) / "told"
        (programs / "notify-send").write_text(f"#!/bin/sh\nprintf '%s\\n' \"$@\" >> '{told}'\n")
        self.environment["PATH"] = f"{programs}:{self.environment['PATH']}"
        self.assertIn("no notification could be shown", self.run_kinsort("undo", "--notify", code=3).messages)
        (programs / "notify-send").chmod(0o755)

        def undo(language, code, *arguments):
            self.run_kinsort("settings", "set", "NLS", language)
            told.unlink(missing_ok=True)
            self.run_kinsort(*(arguments or ("undo", "--notify")), code=code)
            return told.read_text().splitlines()

        head = ["--app-name=Kinsort", "--icon=kinsort"]
        self.assertEqual(undo("en-US", 3), [*head, "Sorted into folders", "There is nothing to undo."])
        self.make_folders("apple pie", "melon")
        for name in ("apple pie.txt", "melon.txt"):
            self.make_file(self.source, name)
        self.run_kinsort("sort", "--to", self.target, "--move", *self.items())
        self.assertEqual(undo("ja-JP", 0), [*head, "フォルダーへ分類", "2 項目を元に戻しました。"])
        self.run_kinsort("redo")
        with open(os.path.join(self.target, "melon/melon.txt"), "a", encoding="utf-8") as file:
            file.write("changed since")
        self.assertEqual(undo("en-US", 1), [*head, "Sorted into folders", "Items put back: 1.", "Items that failed: 1."])
        self.assertEqual(undo("en-US", 0, "redo", "--notify")[3:], ["Items redone: 1."])

    def test_scripts_are_named_in_the_users_language(self):
        folder = self.data / "nautilus/scripts"
        for language, name in (("en_US.UTF-8", SCRIPT_ENGLISH), ("ja_JP.UTF-8", SCRIPT_JAPANESE)):
            self.environment["LANG"] = language
            self.integrate("nautilus")
            self.assertEqual(os.listdir(folder), [name])
        self.environment["LANG"] = "en_US.UTF-8"
        self.integrate("nautilus", "--remove")
        self.assertEqual(os.listdir(folder), [])

    def test_what_others_wrote_stays(self):
        foreign = self.data / "applications/kinsort.desktop"
        foreign.parent.mkdir(parents=True)
        foreign.write_text("[Desktop Entry]\nName=Another\n")
        self.assertIn(f"{foreign}: it was not written by kinsort", self.integrate("menu", code=1).messages)
        self.integrate("--remove", "menu")
        self.assertEqual(foreign.read_text(), "[Desktop Entry]\nName=Another\n")

        # A list of the user's own, behind a link.
        self.uca.parent.mkdir(parents=True)
        kept = Path(self.top) / "dotfiles/uca.xml"
        kept.parent.mkdir()
        kept.write_text(OTHERS)
        kept.chmod(0o600)
        self.uca.symlink_to(os.path.relpath(kept, self.uca.parent))
        self.integrate("thunar")
        self.integrate("thunar")
        self.assertTrue(self.uca.is_symlink())
        self.assertEqual(kept.stat().st_mode & 0o777, 0o600)
        names = [action.find("unique-id").text for action in ElementTree.parse(self.uca).findall("action")]
        self.assertEqual(names, ["1-1", "kinsort-integrate-open"])
        self.assertEqual(os.listdir(kept.parent), ["uca.xml"])
        self.integrate("thunar", "--remove")
        self.assertEqual(kept.read_text(), OTHERS)

    def test_lists_of_the_system_and_broken_ones(self):
        system = Path(self.top) / "xdg/Thunar/uca.xml"
        system.parent.mkdir(parents=True)
        system.write_text(OTHERS)
        self.integrate("thunar")
        self.assertEqual(len(ElementTree.parse(self.uca).findall("action")), 2, "the system's actions stay in the menu")
        self.integrate("thunar", "--remove")
        self.assertFalse(self.uca.exists(), "the system's list counts again")

        for content, is_list in (("<actions/>", True), ("<actions></actions>", True), ("", False), ("no list", False),
                                 ("</actions><actions>", False)):
            self.uca.write_text(content)
            done = self.integrate("thunar", code=0 if is_list else 3)
            if is_list:
                self.assertEqual(len(ElementTree.parse(self.uca).findall("action")), 1, content)
            else:
                self.assertIn("it is no list of custom actions and was not changed", done.messages)
                self.assertEqual(self.uca.read_text(), content)
        self.uca.unlink()
        self.uca.mkdir()
        self.assertIn(str(self.uca), self.integrate("thunar", code=3).messages)
        shutil.rmtree(self.uca.parent)
        self.uca.parent.write_text("a file where the folder should be")
        self.integrate("thunar", code=3)


if __name__ == "__main__":
    unittest.main()
