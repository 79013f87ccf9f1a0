"""Processor time of a script's loops against the same loops in dash.

  python3 bench/scripts.py build/release/bin/kinsort [--lines 1000000] [--calls 1000]

A million lines: a loop with a condition, sums, a block and a text, with more and fewer variables. A thousand calls of
/bin/true, each waited for. All take turns, seven times, and the best time of each counts: a minute in which the
machine is slow is slow for all, and time that other programs take is not in it.
"""

import argparse
import os
import resource
import subprocess
import tempfile

LINES_OF_BODY = 7


def script(turns, variables):
    lines = [f"var more{chr(97 + i // 26)}{chr(97 + i % 26)} = {i}" for i in range(variables - 4)]
    lines += ["var idx = 0", "var sum = 0", "var part", "var word", "do", "idx=+1", "sum=sum+idx*2", "if idx > 1000",
              "part=idx%7", "endif", "word=text", f"while idx < {turns}"]
    return "".join(line + "\n" for line in lines).encode("utf-16-le")


def shell(turns, variables):
    lines = [f"more{i}={i}" for i in range(variables - 4)]
    lines += ["idx=0", "sum=0", f"while [ $idx -lt {turns} ]", "do", "idx=$((idx+1))", "sum=$((sum+idx*2))",
              "if [ $idx -gt 1000 ]; then", "part=$((idx%7))", "fi", "word=text", "done"]
    return "".join(line + "\n" for line in lines).encode()


def calling_script(calls):
    return "".join(line + "\n" for line in ("var idx=0", "do", "idx=+1", "call=Z:\\bin\\true",
                                            f"while idx < {calls}")).encode("utf-16-le")


def calling_shell(calls):
    return f"idx=0\nwhile [ $idx -lt {calls} ]\ndo\nidx=$((idx+1))\n/bin/true\ndone\n".encode()


def processor_time(command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, check=True, stdin=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def best_times(commands):
    """Seconds of processor time of each command."""
    rounds = [[processor_time(command) for command in commands] for _ in range(7)]
    return [min(times) for times in zip(*rounds)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kinsort")
    parser.add_argument("--lines", type=int, default=1_000_000)
    parser.add_argument("--calls", type=int, default=1_000)
    options = parser.parse_args()
    turns = options.lines // LINES_OF_BODY
    with tempfile.TemporaryDirectory() as folder:
        def write(name, content):
            with open(os.path.join(folder, name), "wb") as file:
                file.write(content)
            return file.name

        run = [options.kinsort, "script", "run"]
        peer, four, twenty, hundred, calling_peer, calling = best_times([
            ["dash", write("loop.sh", shell(turns, 20))],
            *(run + [write(f"{count}.ecs", script(turns, count))] for count in (4, 20, 100)),
            ["dash", write("call.sh", calling_shell(options.calls))],
            run + [write("call.ecs", calling_script(options.calls))],
        ])
    print(f"{options.lines} lines, 20 variables: kinsort {twenty:.3f} s, dash {peer:.3f} s, ratio {twenty / peer:.2f}")
    print(f"4 variables {four:.3f} s, 100 variables {hundred:.3f} s, ratio {hundred / four:.2f}")
    print(f"{options.calls} calls of a program: kinsort {calling:.3f} s, dash {calling_peer:.3f} s, "
          f"ratio {calling / calling_peer:.2f}")


if __name__ == "__main__":
    main()
