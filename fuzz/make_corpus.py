#!/usr/bin/env python3
"""Makes the seeds of the fuzz targets from the test cases.

    make_corpus.py OUT CASES...     OUT/filter, OUT/savedata, OUT/short_cuts, OUT/unwml,
                                    OUT/adapter, OUT/wmlc, OUT/archive and OUT/http
"""
import base64
import gzip
import io
import json
import pathlib
import re
import sys
import tarfile
import zipfile
import zlib

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
    # Links and keys followed, a field filled, an option chosen, time, and back.
    yield "agent", b"\x08\0\0\1\0\2\x30\3\x21\5\x14\0\1\4\0\7\1" + document


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


DECK = b"<wml><card title='One'><p>one</p></card></wml>"


def warc(body, length=0):
    http = b"HTTP/1.1 200 OK\r\nContent-Type: text/vnd.wap.wml\r\n\r\n" + body
    return (b"WARC/1.0\r\nWARC-Type: response\r\nWARC-Target-URI: http://a.example/\r\n"
            b"Content-Type: application/http\r\nContent-Length: %d\r\n\r\n%s\r\n\r\n"
            % (len(http) + length, http))


def arc(body):
    http = b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + body
    head = b"1 0 x\nURL IP-address Archive-date Content-type Archive-length\n"
    return (b"filedesc://a 0.0.0.0 20020304050607 text/plain %d\n%s\n" % (len(head), head) +
            b"http://a.example/ 192.0.2.1 20020304050607 text/html %d\n%s\n" % (len(http), http))


def bundles():
    packed = io.BytesIO()
    with zipfile.ZipFile(packed, "w") as bundle:
        bundle.writestr("a.wml", DECK)
        bundle.writestr("b.warc.gz", gzip.compress(warc(DECK), mtime=0))
    yield "zip", packed.getvalue()
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w") as bundle:
        member = tarfile.TarInfo("a.wml")
        member.size = len(DECK)
        bundle.addfile(member, io.BytesIO(DECK))
    yield "tar", packed.getvalue()
    yield "tar.gz", gzip.compress(packed.getvalue(), mtime=0)


def archives():
    """Seeds of the archive target: a byte for the name, one for the size of pieces, the archive."""
    yield "warc", 1, warc(DECK) + warc(DECK, -1) + warc(DECK, 40) + warc(DECK)
    yield "warc.gz", 3, b"".join(gzip.compress(warc(DECK), mtime=0) for _ in range(3))
    yield "whole.gz", 3, gzip.compress(warc(DECK) * 2, mtime=0)
    yield "arc", 2, arc(DECK)
    yield "arc.gz", 5, gzip.compress(arc(DECK), mtime=0)
    for name, bundle in bundles():
        yield name, 0, bundle
    content = {"mimeType": "text/html", "text": DECK.decode(), "size": 50}
    encoded = {"mimeType": "text/vnd.wap.wml", "text": base64.b64encode(DECK).decode(),
               "encoding": "base64"}
    log = {"entries": [{"request": {"url": "http://a.example/"}, "startedDateTime": "2002",
                        "response": {"status": 200, "content": each}}
                       for each in (content, encoded)]}
    yield "har", 6, json.dumps({"log": log}).encode()
    part = b"Content-Type: text/vnd.wap.wml\r\nContent-Location: http://a.example/\r\n"
    mail = (b"--x\r\n" + part + b"\r\n" + DECK + b"\r\n--x\r\n" + part +
            b"Content-Transfer-Encoding: base64\r\n\r\n" + base64.b64encode(DECK) + b"\r\n--x--\r\n")
    yield "parts", 7, mail
    yield "mail", 7, (b"MIME-Version: 1.0\r\nContent-Type: multipart/related; boundary=x\r\n\r\n" +
                      mail)
    yield "mbox", 7, b"From a\nMIME-Version: 1.0\nContent-Type: text/vnd.wap.wml\n\n" + DECK


def responses():
    chunks = b"10\r\n" + DECK[:16] + b"\r\n%x\r\n" % len(DECK[16:]) + DECK[16:] + b"\r\n0\r\n\r\n"
    packed = gzip.compress(DECK, mtime=0)
    yield "plain", b"Content-Length: 46", DECK
    yield "chunked", b"Transfer-Encoding: chunked", chunks
    yield "gzip", b"Content-Encoding: gzip", packed
    yield "deflate", b"Content-Encoding: deflate", zlib.compress(DECK)
    yield "both", b"Content-Encoding: br, gzip\r\nTransfer-Encoding: chunked", b"%x\r\n" % len(
        packed) + packed + b"\r\n0\r\n\r\n"


def write_seeds(out):
    for name, number, archive in archives():
        for piece in (16, 255):
            write(out, "archive", f"{name}-{piece}", bytes([number, piece]) + archive)
    for name, fields, body in responses():
        write(out, "http", name, b"HTTP/1.1 200 OK\r\n" + fields + b"\r\n\r\n" + body)


def write(out, target, name, seed):
    folder = pathlib.Path(out) / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(seed)


def main(out, *cases):
    paths = sorted(path for folder in cases for path in pathlib.Path(folder).glob("*.wml"))
    if not paths:
        sys.exit("no cases in " + " ".join(cases))
    write_seeds(out)
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
