#!/usr/bin/env python3
"""exhausted_test.py UNWML FAILING_HEAP SOURCE: batches with a heap that fails.

One allocation after the other fails, alone or with all that come after it, in every format, with
and without -o, from the start of the program on. Then the address space is limited. Whatever
happens: the program ends by itself, every document is either as it is otherwise or named by a
message, and nothing is half-written.
"""
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

UNWML, HEAP, SOURCE = sys.argv[1:]
FORMATS = {"text": ".txt", "html": ".html", "json": ".json", "markdown": ".md", "trace": ".trace"}
RUNS = 20  # of each way, spread over all its allocations
SECONDS = 60
failures = []
cases = 0


def fail(what, run, why):
    failures.append(f"{what}: {why}\n  status {run.returncode}, {run.stderr[-300:]!r}")


def unwml(arguments, limit=None, **environment):
    def prepare():
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if limit:
            resource.setrlimit(resource.RLIMIT_AS, (limit, limit))

    return subprocess.run([UNWML, *arguments], capture_output=True, timeout=SECONDS,
                          preexec_fn=prepare, env={**os.environ, **environment})


def check_stream(what, run, expected):
    """Standard output: JSON lines and traces of documents, each whole or missing."""
    lines = run.stdout.split(b"\n")
    allowed = set(expected.split(b"\n"))
    wrong = [line for line in lines if line not in allowed]
    if wrong:
        fail(what, run, f"writes {wrong[0][:80]!r}, which it does not otherwise")
    if run.returncode == 0 and run.stdout != expected:
        fail(what, run, "ends with 0 and leaves something out")


def check_files(what, run, folder, expected):
    written = {path.name: path.read_bytes() for path in folder.glob("*")} if folder.exists() else {}
    for name, content in written.items():
        if expected.get(name) != content:
            fail(what, run, f"{name} is not what it is otherwise")
    for name in expected.keys() - written.keys():
        stem = name.rsplit(".", 1)[0].encode()
        if stem not in run.stderr and b"unwml: out of memory" not in run.stderr:
            fail(what, run, f"{name} is missing without a word")
    if run.returncode == 0 and written != expected:
        fail(what, run, "ends with 0 and leaves something out")


def check_end(what, run):
    global cases
    cases += 1
    if run.returncode not in (0, 1):
        fail(what, run, "does not end by itself")
    if run.returncode == 1 and not run.stderr.startswith(b"unwml: "):
        fail(what, run, "does not say why")


def allocations(arguments, work):
    count = work / "count"
    unwml(arguments, LD_PRELOAD=HEAP, VS_WML_COUNT_TO=str(count))
    return int(count.read_text())


def check_heap(format_name, decks, work):
    for jobs in ("1",):
        reference = work / f"reference-{format_name}-{jobs}"
        inputs = ["--quiet", "-t", format_name, "-j", jobs, *decks]
        unwml(["-o", f"{reference}/", *inputs])
        expected = {path.name: path.read_bytes() for path in reference.glob("*")}
        assert len(expected) == len(decks)
        stream = [] if format_name == "html" else ["stdout"]
        for target in ["files", *stream]:
            folder = work / "out"
            arguments = ["-o", f"{folder}/", *inputs] if target == "files" else inputs
            total = allocations(arguments, work)
            whole = unwml(inputs).stdout if target == "stdout" else b""
            for at in range(1, total + 1, max(1, total // RUNS)):
                for mode in ({}, {"VS_WML_FAIL_ON": "1"}):
                    subprocess.run(["rm", "-rf", folder], check=True)
                    what = f"{format_name} -j {jobs} {target}, allocation {at} {' '.join(mode)}"
                    run = unwml(arguments, LD_PRELOAD=HEAP, VS_WML_FAIL_AT=str(at), **mode)
                    check_end(what, run)
                    if target == "files":
                        check_files(what, run, folder, expected)
                    else:
                        check_stream(what, run, whole)


def check_address_space(small, work):
    """One document that needs much among small ones."""
    paragraphs = "".join(f"<p>paragraph {i}</p>" for i in range(100000))
    word = "x" * 8000000
    big = work / "big.wml"
    big.write_text(f"<wml><card>{paragraphs}<p>{word}</p></card></wml>")
    inputs = ["--quiet", small, str(big), small]
    for format_name in ("text", "json"):
        whole = unwml(["-t", format_name, *inputs]).stdout
        failed = read = 0
        for megabytes in range(40, 400, 8):
            run = unwml(["-t", format_name, *inputs], limit=megabytes << 20)
            if b"error while loading shared libraries" in run.stderr:
                continue
            what = f"{format_name} in {megabytes} MB"
            check_end(what, run)
            if run.returncode == 0:
                read += 1
                if run.stdout != whole:
                    fail(what, run, "ends with 0 and leaves something out")
            elif b"big.wml: out of memory" in run.stderr:
                failed += 1
                if small.encode() not in run.stderr and len(run.stdout) < 10:
                    fail(what, run, "the small documents are missing")
        if not failed or not read:
            fail(f"{format_name}: {failed} limits were too small, {read} large enough", run, "")


def main():
    source = pathlib.Path(SOURCE)
    with tempfile.TemporaryDirectory() as name:
        work = pathlib.Path(name)
        decks = []
        for i, deck in enumerate(("hostile", "menu", "order", "hostile")):
            copy = work / f"{i}-{deck}.wml"
            copy.write_bytes((source / f"tests/host/cases/{deck}.wml").read_bytes())
            decks.append(str(copy))
        for format_name in FORMATS:
            check_heap(format_name, decks, work)
        check_address_space(decks[0], work)
    print("\n".join(failures[:20]))
    print(f"{cases - len(failures)} passed, {len(failures)} failed")
    sys.exit(1 if failures or not cases else 0)


main()
