"""A temporary home, folders and files for one test, and the program run in it."""

import json
import os
import shutil
import stat
import subprocess
import tempfile
import unittest

KINSORT = os.environ.get("KINSORT", "build/dev/bin/kinsort")
SOURCE = os.environ.get("KINSORT_SOURCE", os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
HOST_VARIABLE = "VEL_ExCommand"


def describe(path, with_folder_times):
    """Everything about one file or folder that undo has to bring back."""
    info = os.lstat(path)
    kind = stat.S_IFMT(info.st_mode)
    content = None
    if stat.S_ISREG(kind):
        with open(path, "rb") as file:
            content = file.read()
    elif stat.S_ISLNK(kind):
        content = os.readlink(path)
    has_time = with_folder_times or not stat.S_ISDIR(kind)
    return kind, stat.S_IMODE(info.st_mode), info.st_mtime_ns if has_time else None, content


def snapshot(top, with_folder_times=False):
    """{path below top: description}, names as bytes. Times of folders change when something enters or leaves them."""
    top = os.fsencode(top)
    found = {}
    for folder, folders, files in os.walk(top):
        for name in folders + files:
            path = os.path.join(folder, name)
            found[os.path.relpath(path, top)] = describe(path, with_folder_times)
    return found


class Workshop(unittest.TestCase):
    def setUp(self):
        self.top = tempfile.mkdtemp(prefix="kinsort-test-")
        self.addCleanup(shutil.rmtree, self.top, ignore_errors=True)
        self.source = os.path.join(self.top, "source")
        self.target = os.path.join(self.top, "target")
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": os.path.join(self.top, "home"),
            "XDG_STATE_HOME": os.path.join(self.top, "state"),
            "XDG_RUNTIME_DIR": os.path.join(self.top, "runtime"),
            "TERM": "xterm",
            "TZ": "UTC",
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        for folder in (self.source, self.target, self.environment["HOME"]):
            os.mkdir(folder)
        os.mkdir(self.environment["XDG_RUNTIME_DIR"], 0o700)

    def make_file(self, folder, name, content=b"content", mode=0o640, modified=1_600_000_000_123_456_789):
        path = os.path.join(os.fsencode(folder), os.fsencode(name))
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        os.chmod(path, mode)
        os.utime(path, ns=(modified, modified))
        return path

    def make_folders(self, *names):
        for name in names:
            os.makedirs(os.path.join(os.fsencode(self.target), os.fsencode(name)))

    def items(self):
        """Full paths of everything in the source folder, as bytes, sorted."""
        source = os.fsencode(self.source)
        return sorted(os.path.join(source, name) for name in os.listdir(source))

    def run_kinsort(self, *arguments, code=0, input=b"", **options):
        """Runs the program; checks the exit code. The result's output and messages are text."""
        options.setdefault("cwd", self.top)
        done = subprocess.run([os.path.abspath(KINSORT), *arguments], input=input, env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120, **options)
        done.output = done.stdout.decode("utf-8")
        done.messages = done.stderr.decode("utf-8")
        self.assertEqual(done.returncode, code, f"{arguments}\n{done.output}\n{done.messages}")
        return done

    def run_json(self, *arguments, **options):
        verb, *rest = arguments
        return json.loads(self.run_kinsort(verb, "--json", *rest, **options).output)
