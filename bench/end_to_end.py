#!/usr/bin/env python3
"""Time unwml, as a whole process, beside the browsers that dump pages as text, and on a tree.

A deck at a time on one processor, all programs in alternation; then a folder of small decks
beside a mere reading of the files. Programs that are not installed are left out, as is a dump
that ends far before the deck does ("cut")."""
import argparse
import os
import shutil
import subprocess
import tempfile
import time

from report import KINDS, Bench, add_bench_arguments, print_machine, print_table

BROWSERS = {
    "lynx -dump": "lynx -dump -force_html -nolist -width=80",
    "w3m -dump": "w3m -dump -T text/html -cols 80",
    "elinks -dump": "elinks -no-home -dump 1 -force-html -dump-width 80",
}
JAPANESE = {"lynx -dump": " -assume_charset=shift_jis -display_charset=utf-8"}
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8"}
PROCESSORS = os.sched_getaffinity(0)


def run(command, processors, **options):
    """Seconds on the wall, and of all processors."""
    # The child inherits the processors. With code to run in it, it would be forked rather than
    # spawned, and its time would hold two milliseconds of this interpreter's pages.
    os.sched_setaffinity(0, processors)
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                             env=ENVIRONMENT, **options)
    _, status, usage = os.wait4(child.pid, 0)
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        raise SystemExit(f"status {child.returncode} from {command}")
    return time.perf_counter() - start, usage.ru_utime + usage.ru_stime


def reads_all(command, size):
    """False when what it dumps is less than a quarter of the deck: it gave up on the way."""
    dump = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                          env=ENVIRONMENT).stdout
    return len(dump) > size / 4


def shortest(commands, rounds, processors, **options):
    """The shortest times of each command, all of them in alternation."""
    times = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            times[name].append(run(command, processors, **options))
    return {name: tuple(map(min, zip(*pairs))) for name, pairs in times.items()}


def report_decks(bench, unwml):
    commands = {f"unwml --to {form}": [unwml, "--to", form]
                for form in ("text", "json", "html", "markdown")}
    browsers = {name: command for name, command in BROWSERS.items()
                if shutil.which(command.split()[0])}
    factors = {"text": [], "json": []}
    one = {min(PROCESSORS)}
    rows = {name: [] for name in [*commands, *browsers]}
    for deck in bench.decks(bench.size):
        size = deck.stat().st_size
        extra = JAPANESE if deck.stem == "sjis" else {}
        dumps = {name: [*(command + extra.get(name, "")).split(), deck]
                 for name, command in browsers.items()}
        dumps = {name: command for name, command in dumps.items() if reads_all(command, size)}
        reads = {name: [*command, deck] for name, command in commands.items()}
        best = {name: pair[1] for name, pair in
                shortest({**reads, **dumps}, bench.rounds, one).items()}
        for name, cells in rows.items():
            cells.append(f"{size / best[name] / 1e6:.1f}" if name in best else "cut")
        fastest = min((best[name] for name in dumps), default=float("nan"))
        for form in ("text", "json"):
            factors[form].append(f"{fastest / best['unwml --to ' + form]:.1f}")
    for form, cells in factors.items():
        rows[f"{form}: times the fastest dump"] = cells
    print_table(f"Megabytes per second of processor time, whole processes (decks of "
                f"{bench.size / 1e6:g} MB, shortest of {bench.rounds}):", "", KINDS, rows)


def report_tree(bench, unwml, count):
    with tempfile.TemporaryDirectory(dir=bench.programs) as tree:
        bench.run("make_deck", "tree", count, tree)
        size = sum(os.path.getsize(os.path.join(folder, name))
                   for folder, _, names in os.walk(tree) for name in names)
        read = "find . -name '*.wml' -print0 | xargs -0 cat"
        commands = {f"{read} >/dev/null": ["sh", "-c", read]}
        for jobs in ("1", "2"):
            commands[f"unwml --to json -j {jobs} . >/dev/null"] = [
                unwml, "--to", "json", "-j", jobs, "."]
        best = shortest(commands, bench.rounds, PROCESSORS, cwd=tree)
    base = next(iter(best.values()))[0]
    print_table(f"A tree of {count} decks, {size / 1e6:.1f} MB (shortest of {bench.rounds}):", "",
                ("ms", "multiple", "processor ms"),
                {f"`{name}`": [f"{wall * 1000:.0f}", f"{wall / base:.2f}", f"{cpu * 1000:.0f}"]
                 for name, (wall, cpu) in best.items()})


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    add_bench_arguments(parser, size=2000000, rounds=11)
    parser.add_argument("--unwml", help="the tool (default: the one built beside the benchmarks)")
    parser.add_argument("--files", type=int, default=10000, help="decks of the tree")
    arguments = parser.parse_args()
    bench = Bench(arguments.programs, arguments.size, arguments.rounds)
    unwml = os.path.abspath(arguments.unwml or bench.programs.parent / "unwml" / "unwml")
    print_machine()
    report_decks(bench, unwml)
    report_tree(bench, unwml, arguments.files)


if __name__ == "__main__":
    main()
