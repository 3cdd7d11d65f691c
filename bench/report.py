#!/usr/bin/env python3
"""Measure the filter beside its floor and other parsers; print the tables as Markdown.

The floor is the limit of the interface: it skips the tags unread and makes one call for each
character that is left. A figure of 1.50 is one and a half times what the floor takes."""
import argparse
import concurrent.futures
import datetime
import json
import os
import pathlib
import platform
import re
import shutil
import subprocess
import sys

KINDS = ("text", "markup", "tables", "entities", "sjis", "mixed")
PARTS = ("times", "instructions", "heap", "scaling", "pieces")
FLOOR, FILTER = "floor", "vs_wml"


class Bench:
    def __init__(self, programs, size, rounds, libraries=()):
        self.programs = pathlib.Path(programs)
        self.size = size
        self.rounds = rounds
        self.libraries = [word for library in libraries for word in ("--library", library)]

    def run(self, program, *arguments):
        """The lines that a program prints, each cut at its tabs."""
        done = subprocess.run([self.programs / program, *map(str, arguments)],
                              stdout=subprocess.PIPE, text=True, check=True)
        return [line.split("\t") for line in done.stdout.splitlines()]

    def deck(self, kind, size):
        folder = self.programs / "decks" / str(size)
        folder.mkdir(parents=True, exist_ok=True)
        path = folder / (kind + ".wml")
        self.run("make_deck", kind, size, path)
        return path

    def decks(self, size):
        return [self.deck(kind, size) for kind in KINDS]

    def compare(self, decks, rounds, *options):
        """Rows of compare by deck and contender."""
        lines = self.run("compare", "--rounds", rounds, *self.libraries, *options, *decks)
        return {(line[0], line[1]): line[2:] for line in lines}


def print_table(title, corner, columns, rows):
    rows = [[name, *cells] for name, cells in rows.items()]
    lines = [[corner, *columns], *rows]
    widths = [max(len(line[i]) for line in lines) for i in range(len(columns) + 1)]
    rule = ["-" * widths[0]] + ["-" * (width - 1) + ":" for width in widths[1:]]
    print(f"\n{title}\n")
    for line in [lines[0], rule, *rows]:
        cells = [line[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(line[1:], widths[1:])]
        print("| " + " | ".join(cells) + " |")
    sys.stdout.flush()


def by_contender(results, cell):
    """Table rows: contenders down, decks across; `cell` makes the text of a result."""
    names = dict.fromkeys(name for _, name in results)
    return {name: [cell(deck, results.get((deck, name), ["-"])) for deck in KINDS]
            for name in names}


def first_line(*command):
    try:
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        return done.stdout.splitlines()[0]
    except (OSError, IndexError):
        return "unknown " + command[0]


def print_machine():
    cpu = "unknown processor"
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            cpu = line.split(":", 1)[1].strip()
            break
    here = pathlib.Path(__file__).parent
    revision = first_line("git", "-C", here, "describe", "--always", "--dirty")
    print(f"{datetime.date.today()}, revision {revision}, {cpu} with {os.cpu_count()} cores, "
          f"{platform.system()} {platform.machine()}, {first_line('c++', '--version')}")


def report_times(bench):
    results = bench.compare(bench.decks(bench.size), bench.rounds)
    best = {key: float(row[4]) for key, row in results.items() if row[0] != "-"}
    size = f"decks of {bench.size / 1e6:g} MB, {bench.rounds} rounds"

    def shortest(deck, row):
        return "-" if row[0] == "-" else f"{float(row[4]) / best[deck, FLOOR]:.2f}"

    print_table(f"Processor time, shortest, in multiples of the floor's ({size}):", "", KINDS,
                by_contender(results, shortest))
    print_table("Processor time, median of the rounds' multiples of the floor:", "", KINDS,
                by_contender(results, lambda _, row: "-" if row[0] == "-" else f"{float(row[5]):.2f}"))
    print_table("Megabytes per second of processor time, shortest:", "", KINDS,
                by_contender(results, lambda _, row: "-" if row[0] == "-" else
                             f"{int(row[0]) / float(row[4]) / 1e6:.0f}"))


def report_instructions(bench):
    if not shutil.which("valgrind"):
        print("\nNo instruction counts: valgrind is not installed.")
        return
    size = min(bench.size, 1000000)
    decks = bench.decks(size)
    results = bench.compare(decks, 1)  # tells who reads what

    def count(deck, name, passes):
        command = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null",
                   bench.programs / "compare", "--passes", passes, "--only", name,
                   *bench.libraries, deck]
        done = subprocess.run(list(map(str, command)), stderr=subprocess.PIPE, text=True, check=True)
        return int(re.search(r"Collected : (\d+)", done.stderr).group(1))

    def count_pass(deck, name):
        return count(deck, name, 2) - count(deck, name, 1)  # less all that is done once

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        counts = {(deck.stem, name): pool.submit(count_pass, deck, name) for deck in decks
                  for stem, name in results if stem == deck.stem and results[stem, name][0] != "-"}
    cells = {key: [f"{future.result() / int(results[key][0]):.1f}"]
             for key, future in counts.items()}
    print_table(f"Instructions per byte of the deck ({size / 1e6:g} MB, one pass):", "", KINDS,
                by_contender(cells, lambda _, row: row[0]))


def report_heap(bench):
    lines = bench.run("heap_use", *bench.decks(bench.size))
    results = {(line[0], line[1]): line[2:] for line in lines if "a call each" not in line[1]}
    print_table("Heap of one pass: allocations / greatest number of KB held:", "", KINDS,
                by_contender(results, lambda _, row: "-" if row[0] == "-" else
                             f"{row[0]} / {int(row[1]) / 1000:.0f}"))


def report_scaling(bench):
    sizes = [bench.size // 10, bench.size, bench.size * 10]
    rows = {}
    for kind in KINDS:
        for size in sizes:
            deck = bench.deck(kind, size)
            results = bench.compare([deck], 3, "--only", FLOOR, "--only", FILTER)
            deck.unlink()
            row = results[kind, FILTER]
            rows.setdefault(kind, []).append(f"{float(row[4]) / int(row[0]) * 1e9:.2f}")
    print_table("Nanoseconds of processor time per byte of the deck, shortest of 3:", "",
                [f"{size / 1e6:g} MB" for size in sizes], rows)


def report_pieces(bench):
    if not (bench.programs / "pieces").exists():
        print("\nNo pieces: Google Benchmark is not installed.")
        return
    seconds = 0.2 if bench.rounds > 1 else 0.001
    done = subprocess.run([bench.programs / "pieces", f"--benchmark_min_time={seconds}",
                           "--benchmark_format=json"],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    rows = {}
    for piece in json.loads(done.stdout)["benchmarks"]:
        rates = [f"{piece[key] / 1e6:.0f}" if key in piece else "-"
                 for key in ("bytes_per_second", "items_per_second")]
        rows[piece["name"]] = [f"{piece['cpu_time'] / 1000:.2f}", *rates]
    print_table("The filter's pieces, processor time of a round over 100 KB or a list of names:", "",
                ("microseconds", "MB/s", "million items/s"), rows)


def add_bench_arguments(parser, size, rounds):
    parser.add_argument("programs", help="folder of the built benchmarks: build/bench/bench")
    parser.add_argument("--size", type=int, default=size, help=f"bytes of a deck ({size})")
    parser.add_argument("--rounds", type=int, default=rounds, help=f"rounds ({rounds})")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    add_bench_arguments(parser, size=10000000, rounds=9)
    parser.add_argument("--part", choices=PARTS, action="append", help="only that part")
    parser.add_argument("--library", action="append", default=[],
                        help="another build of the filter to compare with")
    arguments = parser.parse_args()
    bench = Bench(arguments.programs, arguments.size, arguments.rounds, arguments.library)
    print_machine()
    for part in arguments.part or PARTS:
        globals()["report_" + part](bench)


if __name__ == "__main__":
    main()
