#!/usr/bin/env python3
"""Makes the seeds of the fuzz targets from the test cases.

    make_corpus.py OUT CASES...     OUT/filter, OUT/savedata, OUT/short_cuts, OUT/unwml,
                                    OUT/adapter and OUT/wmlc
"""
import pathlib
import re
import sys

IDENTITIES = [1151, 1163, 1160, 1161, 1159, 1154, 1155, 1156, 1162, 1157, 1158]
SAVE_SIZE = 516


def seeds(path):
    document = path.read_bytes()
    number = re.search(r"\.(\d{4})\b", path.name)
    identity = IDENTITIES.index(int(number.group(1)) if number else 1151)
    # Read in one go; stopped everywhere and restored; a few bytes at a time and out of memory.
    for header in (b"\0\0\0\0", b"\0\xff\1\0", b"\7\x05\0\x0c"):
        yield "filter", bytes([identity]) + header + document
    # Read in one go; stopped now and then and gone back to; with forged modes and bytes that end.
    for header in (b"\0\0\0\0", b"\x11\x24\1\0", b"\0\x01\x0a\0\1\1\x08\1\xff"):
        yield "short_cuts", bytes([identity]) + header + document
    yield "savedata", bytes([identity, 0x80]) + bytes(SAVE_SIZE) + document
    yield "unwml", b"\0" + document
    yield "unwml", bytes([identity + 1]) + document
    yield "adapter", document


# Compiled decks and a picture, which are no text. A character number, names of the string table
# and an instruction come with the second deck, whose first byte chooses a header.
BINARY = {
    ("adapter", "wmlc"): {
        "compiled":
            b"\x03\x04\x04\x04abc\0\x7F\xE7\x36\x03t\0\x01\x83\0\x03 \xE5\0\x42x\0\x26\x01\x01",
    },
    ("wmlc",): {
        "tokens":
            b"\x01\x43\x04\0\x01\x7F\x67\x60\x02\x8F\xFF\xFF\xFF\x7F\xC4\x04\x04\0\x81\0\x01"
            b"\xC3\x02xy\x01\x9C\x4B\x85\x02\x84\x21\x01\x01\x01\x01",
    },
    ("adapter",): {"picture": b"\0\0\x0A\x03\x00\x3F\x7F\xBF\x00\x3F"},
}


def main(out, *cases):
    paths = sorted(path for folder in cases for path in pathlib.Path(folder).glob("*.wml"))
    if not paths:
        sys.exit("no cases in " + " ".join(cases))
    for targets, found in BINARY.items():
        for target in targets:
            folder = pathlib.Path(out) / target
            folder.mkdir(parents=True, exist_ok=True)
            for name, seed in found.items():
                (folder / name).write_bytes(seed)
    for path in paths:
        for i, (target, seed) in enumerate(seeds(path)):
            folder = pathlib.Path(out) / target
            folder.mkdir(parents=True, exist_ok=True)
            (folder / f"{path.stem}-{i}").write_bytes(seed)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
