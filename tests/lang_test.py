#!/usr/bin/env python3
"""The files of texts: every number that the program uses, in every language, with the same places for values, and built
as the program reads them."""

import os
import re
import unittest
from pathlib import Path

SOURCE = Path(os.environ.get("KINSORT_SOURCE", Path(__file__).resolve().parent.parent))
BUILT = Path(os.environ["KINSORT"]).parent.parent / "vel"
LANGUAGES = sorted("." + path.parent.name for path in (SOURCE / "lang").glob("*/Msg.txt"))


def entries(text):
    """Number and text of each line, the first of a number counting, as the program reads them."""
    table = {}
    for line in text.split("\r\n"):
        fields = line.strip().split("\t")
        if len(fields) == 2:
            table.setdefault(int(fields[0]), fields[1])
    return table


def built(language):
    data = (BUILT / "Lang" / f"Msg{language}.txt").read_bytes()
    return data.decode("utf-16-le")


def enumerators(header, name):
    body = re.search(rf"enum class {name}[^{{]*{{(.*?)}};", (SOURCE / header).read_text(), re.S).group(1)
    return len(re.findall(r"^\s*k\w+", body, re.M))


def numbers_of_the_program():
    text = (SOURCE / "src/framework/MessageNumbers.h").read_text()
    rows = {name: int(value) for name, value in re.findall(r"(kMsg\w+) = (\d+)", text)}
    numbers = [value for name, value in rows.items() if not name.endswith("First")]
    for first, header, name in (("kMsgStatusFirst", "src/platform/Status.h", "StatusCode"),
                                ("kMsgReasonFirst", "src/fileop/FileOperation.h", "ItemReason"),
                                ("kMsgWarningFirst", "src/fileop/FileOperation.h", "BatchWarning")):
        numbers += range(rows[first], rows[first] + enumerators(header, name))
    return numbers


class Texts(unittest.TestCase):
    def test_both_languages_say_the_same(self):
        self.assertEqual(LANGUAGES, [".en-US", ".ja-JP"])
        numbers = numbers_of_the_program()
        self.assertEqual(len(numbers), len(set(numbers)), "a number that is used twice")
        places = None
        for language in LANGUAGES:
            texts = entries(built(language))
            self.assertEqual(sorted(texts), sorted(numbers), language)
            found = {number: sorted(set(re.findall(r"%[0-9]", text))) for number, text in texts.items()}
            self.assertEqual(found, places or found, language)
            places = found
            for number, text in texts.items():
                self.assertRegex(text, r"\S", f"{language} {number}")
                self.assertNotRegex(text.replace("%%", ""), r"%(?![1-9])", f"{language} {number}")
                self.assertNotRegex(text, r"\\[^n\w]|&(?!\w)", f"{language} {number}")

    def test_files_are_as_the_program_reads_them(self):
        for path in [*(BUILT / "Lang").glob("*.txt"), *BUILT.glob("command/Default/.*/*/*.txt")]:
            text = path.read_bytes().decode("utf-16-le")
            self.assertTrue(text.startswith("\ufeff") and text.endswith("\r\n"), path)
            self.assertNotIn("\n", text.replace("\r\n", ""), path)


if __name__ == "__main__":
    unittest.main()
