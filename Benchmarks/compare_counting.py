"""How fast `pallisande-cli count` is beside other programs that count or extract text, in one table of ratios.

    make_documents.py FOLDER
    compare_counting.py FOLDER [--build BUILD_FOLDER] [--rounds N] [--only REGEX] [--instructions]

The programs take turns; times are medians, of the processor (user and system, with all that a program starts) or,
where the row says so, by the clock on the wall. Only ratios taken in one run mean something. A program that isn't
installed is absent; those of Debian are in the packages docx2txt, odt2txt, unzip, gnumeric, lynx, libxml2-utils,
catdoc, poppler-utils, time. With --instructions, instructions are counted instead (package valgrind), which no other work
on the machine disturbs: against the same programs, and for ten times as much text. Exits with 1 when a ratio is worse
than it must be.
"""

import argparse
import os
import re
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
import zipfile
from pathlib import Path
from typing import NamedTuple

sys.dont_write_bytecode = True
import make_documents

HERE = Path(__file__).parent
PYTHON = f"{shlex.quote(sys.executable)} {shlex.quote(str(HERE / 'counting_references.py'))}"
OURS = "pallisande-cli count --threads {threads} {file}"
REFERENCE = "reading-reference"  # Beside our program.


class Row(NamedTuple):
    number: str
    document: str
    peer: str  # A line of shell; {file} is the document.
    must: float
    goal: float
    threads: int = 1
    wall: bool = False
    name: str = ""


WC = "wc -m -w {file}"
UNZIPPED = "unzip -p {file} %s | sed 's/<[^>]*>/ /g' | wc -w"
ROWS = [
    Row("1", "english.txt", WC, 0.9, 0.55),
    Row("1b", "english.txt", f"{PYTHON} sentences {{file}}", 1 / 5, 1 / 8, name="sentence set in Python"),
    Row("1c", "english.txt", WC, 0.7, 0.33, threads=2, wall=True),
    Row("2", "european.txt", WC, 1.0, 0.65),
    Row("3", "cjk.txt", WC, 0.8, 0.45),
    Row("4", "thai.txt", f"{REFERENCE} words {{file}}", 1.4, 1.15, name="ICU’s words"),
    Row("4b", "thai.txt", f"{REFERENCE} words {{file}}", 0.9, 0.62, threads=2, wall=True, name="ICU’s words"),
    Row("5", "book-1000.docx", f"{REFERENCE} xml {{file}} word/document.xml", 1.35, 0.5, name="inflate, Expat"),
    Row("5b", "book-1000.docx", "docx2txt < {file} | wc -w", 1 / 2.5, 1 / 6),
    Row("6", "book-100.docx", "docx2txt < {file} | wc -w", 1 / 4, 1 / 8),
    Row("7", "book-10.docx", UNZIPPED % "word/document.xml", 1 / 2, 1 / 4),
    Row("8", "folder", f"{PYTHON} docx {{file}}/*.docx", 1 / 5, 1 / 16, threads=2, wall=True, name="ElementTree"),
    Row("8b", "folder", OURS.replace("{threads}", "1"), 1 / 1.6, 1 / 1.85, threads=2, wall=True, name="itself, 1 thread"),
    Row("9", "slides.pptx", UNZIPPED % "'ppt/slides/*.xml' 'ppt/notesSlides/*.xml'", 1 / 2.5, 1 / 6),
    Row("10", "cells.xlsx", f"{REFERENCE} xml {{file}} xl/worksheets/sheet1.xml xl/sharedStrings.xml", 1.5, 0.7,
        name="inflate, Expat"),
    Row("10b", "cells.xlsx", "ssconvert -T Gnumeric_stf:stf_csv {file} {scratch}/cells.csv", 1 / 6, 1 / 11),
    Row("11", "book.odt", "odt2txt {file} | wc -w", 1 / 30, 1 / 75),
    Row("12", "page.html", "lynx -dump -nolist -force_html {file} | wc -w", 1 / 5, 1 / 15),
    Row("12b", "page.html", "xmllint --html --noout --huge {file}", 0.8, 0.4),
    Row("13", "book.rtf", "catdoc -d utf-8 {file} | wc -w", 1 / 2, 1 / 5),
    Row("14", "book.pdf", "pdftotext {file} - | wc -w", 1.25, 1.1),
    Row("14w", "book.pdf", "pdftotext {file} - | wc -w", 0.8, 0.6, threads=2, wall=True),
    Row("15", "film.srt", "grep -vE '^[0-9]+.?$|-->' {file} | wc -w", 0.9, 0.5),
]


class MemoryGoal(NamedTuple):
    document: str
    goal: str
    bytes: object  # Of the document's path.


def largest_part(path):
    with zipfile.ZipFile(path) as archive:
        return max(part.file_size for part in archive.infolist())


MEMORY = [
    MemoryGoal("english.txt", "1.6 × file", lambda path: 1.6 * path.stat().st_size),
    MemoryGoal("book-1000.docx", "2.5 × largest part", lambda path: 2.5 * largest_part(path)),
    MemoryGoal("folder", "30 MB", lambda path: 30e6),
    MemoryGoal("cells.xlsx", "150 MB", lambda path: 150e6),
]

# Instructions, without those that an empty document of the format takes: scale of the document, the most.
INSTRUCTIONS = [
    ("english.txt", 0.1, WC, 0.5),
    ("european.txt", 0.1, WC, 0.5),
    ("cjk.txt", 0.1, WC, 0.35),
    ("book-100.docx", 1, f"{REFERENCE} xml {{file}} word/document.xml", 0.45),
    ("book-100.docx", 1, "docx2txt {file} -", 0.2),
]
MOST_GROWTH = 0.1


class Run(NamedTuple):
    wall: float
    processor: float


class Bench:
    def __init__(self, build, scratch):
        self._scratch = scratch
        self._programs = {name: build / "bin" / name for name in ("pallisande-cli", REFERENCE)}
        for program in self._programs.values():
            if not program.exists():
                sys.exit(f"{program} isn’t there: build it first.")

    def line(self, template, file, threads=1):
        line = template.format(file=shlex.quote(str(file)), threads=threads, scratch=self._scratch)
        name, _, rest = line.partition(" ")
        return f"{shlex.quote(str(self._programs[name]))} {rest}" if name in self._programs else line

    def is_there(self, template):
        programs = (part.split()[0].strip("'") for part in template.split(" | "))
        return all(name in self._programs or shutil.which(name) for name in programs)

    def run(self, line):
        begin = time.perf_counter()
        process = subprocess.Popen(["sh", "-c", line], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                   env={**os.environ, "LC_ALL": "C.UTF-8"})
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        wall = time.perf_counter() - begin
        if process.returncode != 0:
            raise subprocess.CalledProcessError(process.returncode, line)
        return Run(wall, usage.ru_utime + usage.ru_stime)

    def peak(self, line):
        """Bytes in memory at most. What wait4 tells includes the memory of this script, which the program began in."""
        done = subprocess.run(["time", "-f", "%M", "sh", "-c", line], executable=shutil.which("time"),
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=True)
        return 1024 * int(done.stderr.split()[-1])

    def instructions(self, line):
        """Of all programs that the line starts."""
        done = subprocess.run(
            ["valgrind", "--tool=callgrind", "--trace-children=yes", "--callgrind-out-file=/dev/null", "sh", "-c", line],
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env={**os.environ, "LC_ALL": "C.UTF-8"}, check=True)
        return sum(map(int, re.findall(rb"== Collected : (\d+)", done.stderr)))


class Table:
    def __init__(self):
        self.missed = False

    def add(self, number, document, peer, ours, theirs, must, goal=None):
        ratio = ours / theirs
        verdict = "MISSED" if ratio > must else "" if goal is None else "goal" if ratio <= goal else "above the goal"
        self.missed = self.missed or ratio > must
        goal = "" if goal is None else f"{goal:.3f}"
        print(f"{number:4} {document:26} {peer:24} {ours:10.4g} {theirs:10.4g} {ratio:7.3f} {must:6.3f} {goal:>6}  {verdict}",
              flush=True)

    def failed(self, number, document, line):
        self.missed = True
        print(f"{number:4} {document:26} failed: {line}", flush=True)

    @staticmethod
    def head(unit):
        print(f"\n{'row':4} {'document':26} {'beside':24} {'ours ' + unit:>10} {'theirs':>10} {'ratio':>7} {'must':>6} "
              f"{'goal':>6}")

    @staticmethod
    def absent(number, document, what):
        print(f"{number:4} {document:26} absent: {what}", flush=True)


def peer_name(row):
    return row.name or row.peer.split(" ")[0] + (" + sed + wc" if "sed" in row.peer else "")


def compare_times(bench, table, folder, rows, rounds):
    table.head("ms")
    for row in rows:
        file = folder / row.document
        if not file.exists() or not bench.is_there(row.peer):
            table.absent(row.number, row.document, peer_name(row) if file.exists() else "the document")
            continue
        ours, theirs = (bench.line(template, file, row.threads) for template in (OURS, row.peer))
        try:
            bench.run(ours), bench.run(theirs)
        except subprocess.CalledProcessError as error:
            table.failed(row.number, row.document, error.cmd)
            continue
        times = []
        while len(times) < rounds:
            times.append([run.wall if row.wall else run.processor for run in (bench.run(ours), bench.run(theirs))])
            if max(times[0]) > 10:
                break
        our_time, their_time = (1000 * statistics.median(column) for column in zip(*times))
        table.add(row.number, row.document + (" (wall)" if row.wall else ""), peer_name(row), our_time, their_time,
                  row.must, row.goal)


def compare_memory(bench, folder, scratch):
    if not shutil.which("time"):
        print("\nPeaks of memory: absent: time")
        return
    (scratch / "empty.txt").touch()
    empty = bench.peak(bench.line(OURS, scratch / "empty.txt"))
    print(f"\n{'document':31} {'peak MB':>10} {'goal MB':>10}  (without the {empty / 1e6:.1f} MB of an empty text)")
    for document, words, goal in MEMORY:
        file = folder / document
        if file.exists():
            peak, most = bench.peak(bench.line(OURS, file, 2)) - empty, goal(file)
            verdict = "goal" if peak <= most else "above the goal"
            print(f"{document:31} {peak / 1e6:10.1f} {most / 1e6:10.1f}  {words}: {verdict}", flush=True)


def content_bytes(path):
    if not zipfile.is_zipfile(path):
        return path.stat().st_size
    with zipfile.ZipFile(path) as archive:
        return sum(part.file_size for part in archive.infolist())


class Instructions:
    """Those of counting documents made for it, without those of an empty one."""

    def __init__(self, bench, scratch):
        self._bench, self._scratch = bench, scratch

    def made(self, name, scale):
        folder = self._scratch / str(scale)
        folder.mkdir(exist_ok=True)
        path = folder / name
        if not path.exists():
            make = make_documents.write_hostile if name in make_documents.HOSTILE else make_documents.make
            make(path, scale)
        return path

    def of(self, template, name, scale):
        """With the bytes that they are for."""
        full, empty = self.made(name, scale), self.made(name, 0)
        instructions = [self._bench.instructions(self._bench.line(template, path)) for path in (full, empty)]
        return instructions[0] - instructions[1], content_bytes(full) - content_bytes(empty)

    def compare(self, table, wanted):
        table.head("M")
        for name, scale, peer, must in INSTRUCTIONS:
            if not wanted(name):
                continue
            if not self._bench.is_there(peer):
                table.absent("", name, peer.split()[0])
                continue
            ours, theirs = (self.of(template, name, scale)[0] / 1e6 for template in (OURS, peer))
            table.add("", name, " ".join(peer.split()[:3]).replace(" {file}", ""), ours, theirs, must)

    def growth(self, table, wanted):
        print(f"\n{'document, ten times as long':31} {'a byte':>10} {'then':>10} {'grows':>7}")
        names = [name for name in make_documents.DOCUMENTS if name not in ("folder", "book-10.docx", "book-1000.docx", "book.pdf")]
        for name in filter(wanted, names + list(make_documents.HOSTILE)):
            scales = (0.1, 1) if name in make_documents.HOSTILE or name in ("book-100.docx", "slides.pptx") else (0.01, 0.1)
            short, long = (count / size for count, size in (self.of(OURS, name, scale) for scale in scales))
            grows = long / short - 1
            table.missed = table.missed or grows > MOST_GROWTH
            print(f"{name:31} {short:10.2f} {long:10.2f} {grows:7.1%}  {'MISSED' if grows > MOST_GROWTH else ''}", flush=True)


def main():
    parser = argparse.ArgumentParser(description="Sets counting beside other programs.")
    parser.add_argument("folder", type=Path, help="what make_documents.py has made")
    parser.add_argument("--build", type=Path, default=HERE.parent / "build" / "release")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--only", default="", help="a pattern for rows and documents")
    parser.add_argument("--instructions", action="store_true")
    arguments = parser.parse_args()
    table = Table()
    with tempfile.TemporaryDirectory() as name:
        scratch = Path(name)
        bench = Bench(arguments.build, scratch)
        if arguments.instructions:
            counter = Instructions(bench, scratch)
            wanted = re.compile(arguments.only).search
            counter.compare(table, wanted)
            counter.growth(table, wanted)
        else:
            rows = [row for row in ROWS if re.search(arguments.only, f"{row.number} {row.document}")]
            compare_times(bench, table, arguments.folder, rows, arguments.rounds)
            compare_memory(bench, arguments.folder, scratch)
    sys.exit(table.missed)


main()
