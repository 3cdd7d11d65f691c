#!/usr/bin/env python3
"""Archives of other writers, read by the archive library and by other readers.

    oracles.py LIST_DOCUMENTS WORK

GNU wget crawls a server on loopback that serves decks in chunks and compressed; warcio writes
records of many sizes. Number, place, address, digest and body of each deck have to be what warcio
and warcio.js read. Packages are installed into WORK.
"""
import gzip
import http.server
import io
import json
import pathlib
import random
import subprocess
import sys
import threading
import zlib

VERSIONS = {"warcio": "warcio==1.8.1", "warcio.js": "warcio@2.4.11"}
TYPES = ["text/vnd.wap.wml", "text/vnd.wap.wml; charset=utf-8", "text/html", "text/plain"]

READ_JS = """
import { createReadStream } from "fs";
import { WARCParser } from "warcio";
const parser = new WARCParser(createReadStream(process.argv[2]), { keepHeadersCase: false });
for await (const record of parser) {
  const body = Buffer.from(await record.readFully(true)).toString("hex");
  await record.skipFully?.();
  console.log(JSON.stringify({ type: record.warcType, uri: record.warcTargetURI,
                               offset: parser.offset, body }));
}
"""


def deck(number):
    rnd = random.Random(number)
    words = " ".join(str(rnd.random()) for _ in range(rnd.choice([1, 10, 100, 5000])))
    return f"<wml><card id='c{number}'><p>{words}</p></card></wml>".encode()


def chunks(body):
    size = max(1, len(body) // 3)
    parts = [body[at:at + size] for at in range(0, len(body), size)]
    return b"".join(b"%X\r\n%s\r\n" % (len(part), part) for part in parts) + b"0\r\n\r\n"


class Server(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        number = int(self.path[1:])
        body = deck(number)
        self.send_response(200)
        self.send_header("Content-Type", TYPES[number % len(TYPES)])
        if number % 3 == 1:
            body = gzip.compress(body)
            self.send_header("Content-Encoding", "gzip")
        if number % 3 == 2:
            body = zlib.compress(body)
            self.send_header("Content-Encoding", "deflate")
        if number % 2:
            self.send_header("Transfer-Encoding", "chunked")
            body = chunks(body)
        else:
            self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *_):
        pass


def crawl(work):
    """wget's archives, compressed and not."""
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Server)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    pages = [f"http://127.0.0.1:{server.server_port}/{number}" for number in range(24)]
    for name, options in (("wget", []), ("wget-plain", ["--no-warc-compression"])):
        subprocess.run(["wget", "-q", "-O", "/dev/null", f"--warc-file={work / name}", *options,
                        *pages], check=True)
    server.shutdown()
    return [work / "wget.warc.gz", work / "wget-plain.warc"], {page: deck(int(page.rsplit("/")[-1]))
                                                               for page in pages}


def write(work):
    """warcio's archives of all versions."""
    from warcio.statusandheaders import StatusAndHeaders
    from warcio.warcwriter import WARCWriter
    paths, decks = [], {}
    for version in ("1.0", "1.1"):
        for compressed in (False, True):
            path = work / f"warcio-{version}.warc{'.gz' if compressed else ''}"
            with path.open("wb") as file:
                writer = WARCWriter(file, gzip=compressed, warc_version=version)
                writer.write_record(writer.create_warcinfo_record("x", {"software": "x"}))
                for number in range(40):
                    uri = f"http://a.example/{number}"
                    decks[uri] = deck(number)
                    fields = [("Content-Type", TYPES[number % len(TYPES)])]
                    body = decks[uri]
                    if number % 2:
                        fields.append(("Transfer-Encoding", "chunked"))
                        body = chunks(body)
                    head = StatusAndHeaders("200 OK", fields, protocol="HTTP/1.1")
                    writer.write_record(writer.create_warc_record(
                        uri, "response", payload=io.BytesIO(body), http_headers=head))
            paths.append(path)
    return paths, decks


def ours(program, path):
    found = {}
    result = subprocess.run([program, path], capture_output=True, text=True, check=True)
    for line in result.stdout.splitlines():
        offset, length, uri, status, digest, warnings, body = line.split("\t")
        found[uri] = {"offset": int(offset), "length": int(length), "status": int(status),
                      "digest": digest, "warnings": int(warnings), "body": bytes.fromhex(body)}
    records = int(result.stderr.split(" records:")[0].split()[-1])
    return records, found


def by_warcio(path):
    from warcio.archiveiterator import ArchiveIterator
    found, records = {}, 0
    with path.open("rb") as file:
        reader = ArchiveIterator(file)
        for record in reader:
            records += 1
            if record.rec_type != "response":
                continue
            headers = record.rec_headers
            found[headers.get_header("WARC-Target-URI").strip("<>")] = {
                "body": record.content_stream().read(), "offset": reader.get_record_offset(),
                "length": reader.get_record_length(),
                "digest": headers.get_header("WARC-Payload-Digest") or
                          headers.get_header("WARC-Block-Digest")}
    return records, found


def by_warcio_js(work, path):
    result = subprocess.run(["node", work / "read.mjs", path], capture_output=True, text=True,
                            check=True)
    lines = [json.loads(line) for line in result.stdout.splitlines()]
    return len(lines), {line["uri"].strip("<>"): bytes.fromhex(line["body"]) for line in lines
                        if line["type"] == "response"}


def install(work):
    packages = work / "python"
    subprocess.run([sys.executable, "-m", "pip", "install", "-qq", "--upgrade", "--target",
                    packages, VERSIONS["warcio"]], check=True)
    sys.path.insert(0, str(packages))
    (work / "package.json").write_text("{}")
    subprocess.run(["npm", "install", "--silent", "--prefix", work, VERSIONS["warcio.js"]],
                   check=True)
    (work / "read.mjs").write_text(READ_JS)


def main(program, work):
    work = pathlib.Path(work).resolve()
    work.mkdir(parents=True, exist_ok=True)
    install(work)
    passed = failed = 0

    def expect(what, got, wanted):
        nonlocal passed, failed
        if got == wanted:
            passed += 1
        else:
            failed += 1
            print(f"{what}: {str(got)[:200]} instead of {str(wanted)[:200]}")

    for paths, decks in (crawl(work), write(work)):
        for path in paths:
            records, found = ours(program, path)
            expect(f"{path.name}: decks", sorted(found), sorted(decks))
            their_records, theirs = by_warcio(path)
            js_records, js_bodies = by_warcio_js(work, path)
            expect(f"{path.name}: records", records, their_records)
            expect(f"{path.name}: records of warcio.js", records, js_records)
            for uri, document in found.items():
                what = f"{path.name}: {uri}"
                expect(f"{what}: body", document["body"], decks[uri])
                expect(f"{what}: body of warcio", theirs[uri]["body"], decks[uri])
                expect(f"{what}: body of warcio.js", js_bodies[uri], decks[uri])
                expect(f"{what}: warnings", document["warnings"], 0)
                for key in ("offset", "digest"):
                    expect(f"{what}: {key}", document[key], theirs[uri][key])
                # warcio leaves out the empty lines behind a record that is not compressed; what
                # is said here is where the next one starts.
                lines = 0 if path.suffix == ".gz" else len("\r\n\r\n")
                expect(f"{what}: length", document["length"], theirs[uri]["length"] + lines)
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
