#!/usr/bin/env python3
"""How well names alone do on names that nobody chose for it: the package files of this Debian system, sorted into the
names of its documentation folders. Makes both as empty files and folders in a temporary place and runs the plan.

usage: packages.py KINSORT
"""

import json
import os
import subprocess
import sys
import tempfile

DOCUMENTATION = "/usr/share/doc"


def package_files():
    """{name of the package file, as apt stores it: name of the package}"""
    listed = subprocess.run(["dpkg-query", "-W", "-f", r"${Package}\t${Version}\t${Architecture}\n"],
                            stdout=subprocess.PIPE, encoding="utf-8", check=True).stdout
    rows = (line.split("\t") for line in listed.splitlines())
    return {f"{name}_{version.replace(':', '%3a')}_{architecture}.deb": name for name, version, architecture in rows}


def plan(kinsort, files, folders):
    with tempfile.TemporaryDirectory(prefix="kinsort-packages-") as top:
        for folder in folders:
            os.makedirs(os.path.join(top, "doc", folder))
        items = [os.path.join(top, name) for name in files]
        for item in items:
            open(item, "w", encoding="utf-8").close()
        done = subprocess.run([kinsort, "plan", "--json", "--scores", "--to", os.path.join(top, "doc"), "-f", "-"],
                              input="\n".join(items), stdout=subprocess.PIPE, encoding="utf-8", check=False)
    return json.loads(done.stdout)


def main():
    folders = [name for name in os.listdir(DOCUMENTATION) if os.path.isdir(os.path.join(DOCUMENTATION, name))]
    files = {name: package for name, package in package_files().items() if package in folders}
    right, tied, length, wrong = 0, 0, {}, []
    for row in plan(sys.argv[1], sorted(files), folders):
        name = os.path.basename(row["item"])
        chosen = row["folder"] and os.path.basename(row["folder"])
        hit = chosen == files[name]
        right += hit
        tied += not hit and row["score"] == row["runner_up_score"]
        group = "up to 5" if len(files[name]) < 6 else "6 to 10" if len(files[name]) < 11 else "more than 10"
        good, all_ = length.get(group, (0, 0))
        length[group] = good + hit, all_ + 1
        if not hit:
            wrong.append((name, chosen, row["score"]))
    print(f"{len(files)} package files, {len(folders)} folders: {right} went to the folder of their own package "
          f"({100 * right / len(files):.0f} %), {len(wrong)} elsewhere, {tied} of these by a tie")
    for group in "up to 5", "6 to 10", "more than 10":
        good, all_ = length.get(group, (0, 0))
        print(f"  package names of {group} characters: {good} of {all_}")
    print("elsewhere, for example:")
    for name, chosen, score in wrong[:: max(1, len(wrong) // 5)][:5]:
        print(f"  {name} -> {chosen} (score {score})")


if __name__ == "__main__":
    main()
