"""How long the command line takes to start, against an empty program linked with the same libraries.

    start_up.py BUILD_FOLDER [ROUNDS]

The programs take turns; medians of the time on the wall, from before the fork to the end, in milliseconds.
"""

import statistics
import subprocess
import sys
import time
from pathlib import Path


def started(command):
    begin = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return (time.perf_counter() - begin) * 1000


def main(folder, rounds="200"):
    programs = Path(folder) / "bin"
    empty = [programs / "empty-program"]
    ours = [programs / "pallisande-cli", "--version"]
    times = [(started(ours), started(empty)) for _ in range(int(rounds))]
    our_time, empty_time = (statistics.median(column) for column in zip(*times))
    print(f"row 20: {our_time:.2f} ms against {empty_time:.2f} ms: {our_time / empty_time:.2f} (must 1.6, goal 1.2)")


main(*sys.argv[1:])
