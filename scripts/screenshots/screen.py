"""A screen that nobody sees, for programs that are looked at: its picture is a file that they draw into."""

import mmap
import os
import struct
import subprocess
import tempfile


class Screen:
    def __init__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="kinsort-screen-")
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-fbdir", self.folder.name, "-nocursor",
             "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with open(read, "rb") as number:
            self.name = ":" + number.readline().decode().strip()
        with open(os.path.join(self.folder.name, "Xvfb_screen0"), "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
        header = struct.unpack(">25I", self.memory[:100])
        self.start = header[0] + header[19] * 12  # the file's header and its table of colours
        self.width, self.height, self.line = header[4], header[5], header[12]
        self.blank = self.picture()

    def picture(self):
        return self.memory[self.start:self.start + self.line * self.height]

    def lines(self, picture):
        return [picture[at:at + self.line] for at in range(0, len(picture), self.line)]

    def close(self):
        self.server.terminate()
        self.server.wait()
        self.folder.cleanup()


def environment_below(home):
    """The environment of programs that know nothing of this user: every folder that they ask for is below `home`."""
    environment = {"PATH": os.environ["PATH"], "LANG": "C.UTF-8", "HOME": home, "NO_AT_BRIDGE": "1"}
    for name in ("XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME"):
        environment[name] = os.path.join(home, "." + name.lower())
        os.makedirs(environment[name], 0o700, exist_ok=True)
    return environment
