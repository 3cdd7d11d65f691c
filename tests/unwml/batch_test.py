#!/usr/bin/env python3
"""batch_test.py UNWML SOURCE: a document reads the same whatever is read before and beside it.

Mutated decks, plain and compiled, in many character sets, are read one by one, in one batch, in the
opposite order and by four threads: what each becomes and what is said of it is the same.
"""
import json
import pathlib
import random
import subprocess
import sys
import tempfile

UNWML, SOURCE = sys.argv[1], pathlib.Path(sys.argv[2])
DECKS = 300
SECONDS = 120
CHARSETS = ("utf-8", "utf-16", "utf-7", "iso-8859-1", "iso-8859-7", "iso-2022-jp", "iso-2022-kr",
            "shift_jis", "gb18030", "big5", "euc-jp", "koi8-r", "hz-gb-2312", "x11-compound-text")
# What changes the state of a converter, a reader of compiled decks or a parser.
FRAGMENTS = (b"\x1b$B", b"\x1b(B", b"\x0e", b"\x0f", b"~{", b"\xff\xfe", b"\xfe\xff", b"+AGE-",
             b"\x80", b"\x02\x81\x20", b"\x02\x8f\xff\xff\xff\x7f",
             b"\x01", b"<card>", b"</p>",
             b"<table columns='3'>", b"<tr><td>", b"&#x1F600;", b"&#0;", b"$(a)", b"$$", b"<![CDATA[", b"<!--",
             b"\x00")


COMPILED = (b"\x03\x04\x6a\0\x7f\xe7\x36\x03t\0\x01\x03abc\0\x01\x01",
            b"\x03\x04\x6a\x05abcd\0\x7f\xe7\x36\x03t\0\x01\x60\x83\0\x02\x81\x20\x03x\0"
            b"\x01\x01\x01",
            b"\x01\x04\x04\0\x7f\x67\x60\x03\xe5\xe4\0\x26\x01\x01\x01")


def declared(deck, charset):
    body = deck[deck.index(b"?>") + 2:] if deck.startswith(b"<?xml") else deck
    return f'<?xml version="1.0" encoding="{charset}"?>'.encode() + body


def mutated(deck, choice):
    deck = bytearray(deck)
    for _ in range(choice.randint(1, 8)):
        at = choice.randrange(len(deck) + 1)
        kind = choice.randrange(4)
        if kind == 0:
            deck[at:at] = choice.choice(FRAGMENTS)
        elif kind == 1:
            del deck[at:at + choice.randint(1, 12)]
        elif kind == 2:
            deck[at:at + 1] = bytes([choice.randrange(256)])
        else:
            start = choice.randrange(len(deck) + 1)
            deck[at:at] = deck[start:start + choice.randint(1, 40)]
    return bytes(deck)


def write_decks(folder):
    choice = random.Random(2002)
    plain = [path.read_bytes() for path in sorted((SOURCE / "tests/host/cases").glob("*.wml"))
             if 0 < path.stat().st_size < 4000]
    for i in range(DECKS):
        compiled = i % 4 == 0
        deck = choice.choice(COMPILED if compiled else plain)
        if not compiled and i % 3:
            deck = declared(deck, choice.choice(CHARSETS))
        name = f"{i:03}.wmlc" if compiled else f"{i:03}.wml"
        (folder / name).write_bytes(mutated(deck, choice))
    return sorted(path.name for path in folder.iterdir())


def read(folder, names, *options):
    """The lines of JSON and of messages about each document, by its name, and the status."""
    run = subprocess.run([UNWML, "-t", "json", *options, *names], capture_output=True, cwd=folder,
                         timeout=SECONDS)
    answers = {name: [] for name in names}
    for line in run.stdout.splitlines():
        answers[json.loads(line)["source"]].append(line)
    for line in run.stderr.splitlines():
        for name in names:
            if line.startswith(f"unwml: {name}: ".encode()):
                answers[name].append(line)
    return answers, run.returncode


def main():
    failures = []
    with tempfile.TemporaryDirectory() as work:
        folder = pathlib.Path(work)
        names = write_decks(folder)
        alone, statuses = {}, set()
        for name in names:
            answers, status = read(folder, [name])
            alone.update(answers)
            statuses.add(status)
            if status not in (0, 1) or not answers[name]:
                failures.append(f"{name} alone: status {status}, {len(answers[name])} lines")
        ways = {"in one batch": (names, "-j", "1"),
                "in the opposite order": (names[::-1], "-j", "1"),
                "with -j 4": (names, "-j", "4")}
        for way, (order, *options) in ways.items():
            together, status = read(folder, order, *options)
            if status != max(statuses):
                failures.append(f"{way}: status {status}")
            failures += [f"{name} {way}:\n  {together[name]}\n  alone:\n  {alone[name]}"
                         for name in names if together[name] != alone[name]]
    print("\n".join(failures[:10]))
    print(f"{len(names)} decks, {len(failures)} failures")
    sys.exit(1 if failures else 0)


main()
