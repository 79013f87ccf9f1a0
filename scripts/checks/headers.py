#!/usr/bin/env python3
"""Only backends see the platform: everywhere else in src/ includes come from the standard library or the short list of
libraries below, and no code is chosen by #if."""

import re

import tree

# Left out on purpose: <filesystem>, <fstream> (go through platform/), <cwchar>, <cwctype>, <locale> (no wchar_t, no
# locale of the process), C headers (<stdint.h>: say <cstdint>).
STANDARD = set("""
    algorithm any array atomic barrier bit bitset cassert cctype cerrno charconv chrono climits cmath codecvt compare
    complex concepts condition_variable coroutine csignal cstdarg cstddef cstdint cstdio cstdlib cstring ctime deque
    exception execution format forward_list functional future initializer_list iomanip ios iosfwd iostream istream
    iterator latch limits list map memory memory_resource mutex new numbers numeric optional ostream queue random ranges
    ratio regex scoped_allocator semaphore set shared_mutex source_location span sstream stack stdexcept stop_token
    streambuf string string_view syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map
    unordered_set utility valarray variant vector version
""".split()) - {"codecvt"}
LIBRARIES = re.compile(r"xxhash\.h|CLI/.+|nlohmann/.+")
# Headers that some files may have on top: (file, header).
EXTRA = (
    (re.compile(r".*_test\.(cpp|h)"), re.compile(r"g(test|mock)/.+|filesystem|fstream")),
    # The engine's tests on the real system set up what no interface offers: mounts, limits, attributes, other users.
    (re.compile(r"src/fileop/RealDisk\w*_test\.(cpp|h)"), re.compile(r"(linux/|sys/)?\w+\.h")),
    (re.compile(r"src/main/.+"), re.compile(r"clocale")),  # the program's start sets the locale
    # The dialog's program is tested through its real widgets.
    (re.compile(r"src/main/KinsortProgram_test\.cpp"), re.compile(r"Q\w+")),
    (re.compile(r"src/.+Avx(2|512)\.cpp"), re.compile(r"immintrin\.h")),  # built only where CMake finds the processor
)

INCLUDE = re.compile(r"^\s*#\s*include\s*<([^>]+)>")
CONDITION = re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif|else)\b")


def judge(name, text):
    if CONDITION.match(text):
        return "conditional code; let CMake choose a backend, or use a constant"
    match = INCLUDE.match(text)
    if not match or name.startswith(tree.WORKSHOPS):
        return None
    header = match.group(1)
    if header in STANDARD or LIBRARIES.fullmatch(header):
        return None
    if any(file.fullmatch(name) and extra.fullmatch(header) for file, extra in EXTRA):
        return None
    return f"<{header}> belongs to a platform or is not on the list; ask for it through an interface in src/platform/"


def main():
    top = tree.root()
    faults = []
    for name in tree.cpp_files(top):
        if name.startswith(tree.BACKENDS):
            continue
        for number, text in tree.lines(top, name):
            message = judge(name, text)
            if message:
                faults.append((name, number, message))
    tree.finish(faults)


if __name__ == "__main__":
    main()
