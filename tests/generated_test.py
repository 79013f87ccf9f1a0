"""What is generated from the program's tables and committed is up to date; completion works in a real shell."""

import os
import subprocess
import unittest

from workshop import SOURCE, Workshop

# Committed file and the command that makes it.
GENERATED = {
    "docs/kinsort.1": ["manual"],
    "desktop/completions/kinsort.bash": ["completion", "bash"],
    "desktop/completions/_kinsort": ["completion", "zsh"],
    "desktop/completions/kinsort.fish": ["completion", "fish"],
}


class Generated(Workshop):
    def test_committed_files_are_up_to_date(self):
        for name, command in GENERATED.items():
            with open(os.path.join(SOURCE, name), encoding="utf-8") as file:
                self.assertEqual(file.read(), self.run_kinsort(*command).output,
                                 f"{name} is stale: kinsort {' '.join(command)} >{name}")

    def complete(self, *words):
        script = os.path.join(SOURCE, "desktop/completions/kinsort.bash")
        done = subprocess.run(
            ["bash", "-c", 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kinsort 2>/dev/null; '
                           'printf "%s\\n" "${COMPREPLY[@]}"', "bash", script, "kinsort", *words],
            cwd=self.top, stdout=subprocess.PIPE, stderr=subprocess.PIPE, encoding="utf-8", check=True)
        self.assertEqual(done.stderr, "")
        return done.stdout.split("\n")[:-1]

    def test_bash_completion(self):
        self.make_file(self.top, "so file")
        self.assertEqual(self.complete("pl"), ["plan"])
        self.assertEqual(self.complete("re"), ["redo", "recover"])
        self.assertEqual(self.complete("sort", "--on"), ["--on-conflict"])
        self.assertEqual(self.complete("sort", "--on-conflict", "=", "k"), ["keep-both"])
        self.assertEqual(self.complete("sort", "--on-conflict", "="), ["ask", "skip", "replace", "keep-both"])
        self.assertEqual(self.complete("plan", "--to", "so"), ["source"])
        self.assertEqual(sorted(self.complete("plan", "so")), ["so file", "source"])
        self.assertEqual(self.complete("help", "hi"), ["history"])
        self.assertEqual(self.complete("undo", "x"), [""])
        self.assertEqual(self.complete("settings", "ex"), ["export"])
        self.assertEqual(self.complete("settings", "import", "so"), ["source", "so file"])
        self.assertEqual(self.complete("settings", "--ty"), ["--type"])
        self.assertEqual(self.complete("settings", "get", "--"), ["--json", "--quiet", "--help"])
        self.assertEqual(self.complete("script", "--trace", "run", "--tr"), ["--trace"])
        self.assertEqual(self.complete("script", "check", "--tr"), [""])
        self.assertEqual(self.complete("script", "run", "--cwd", "so"), ["source"])
        self.assertEqual(self.complete("integrate", "nemo", "n"), ["nemo", "nautilus"])


if __name__ == "__main__":
    unittest.main()
