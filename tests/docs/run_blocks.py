#!/usr/bin/env python3
"""Runs the code blocks of a Markdown file, in order, in one scratch directory.

usage: run_blocks.py FILE.md [--ci | --marks] [--examples DIR] [--extract NAME]

Every fenced block has a comment on the line before it that says how it is tested:

  <!-- test: run -->            run by bash -e; the block fails with its status
  <!-- test: file NAME -->      written to NAME, for the blocks that follow
  <!-- test: output -->         what the last `run` block printed, blanks at line ends aside
  <!-- test: ci -->             run by --ci only, in the current directory
  <!-- test: skip REASON -->    not run

A block without such a comment is a failure, and so is a file without blocks to run.
--examples copies a folder into the scratch directory as `examples`. --marks only looks whether
every block has its comment. --extract prints the block that would be written to NAME.
"""
import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

MARK = re.compile(r"<!-- test: (run|file \S+|output|ci|skip .+) -->$")


def blocks(text):
    """Yields (line number, mark or None, content) of each fenced block."""
    lines = text.split("\n")
    i = 0
    while i < len(lines):
        fence = re.match(r"(\s*)(```+)", lines[i])
        if not fence:
            i += 1
            continue
        indent, ticks = fence.groups()
        end = i + 1
        while lines[end].strip() != ticks:
            end += 1
        mark = MARK.match(lines[i - 1].strip()) if i > 0 else None
        content = "".join(line[len(indent):] + "\n" for line in lines[i + 1:end])
        yield i + 1, mark and mark.group(1), content
        i = end + 1


def bash(script, directory):
    return subprocess.run(["bash", "-euo", "pipefail", "-c", script], cwd=directory, text=True,
                          encoding="utf-8", stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)


def trimmed(text):
    return [line.rstrip() for line in text.rstrip().split("\n")]


def test(mark, content, directory, last_output):
    """Returns (output of a run, failure message or None)."""
    kind, _, argument = mark.partition(" ")
    if kind == "file":
        path = directory / argument
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(content, encoding="utf-8")
    elif kind in ("run", "ci"):
        result = bash(content, directory)
        if result.returncode != 0:
            return result.stdout, f"status {result.returncode}\n{result.stdout}"
        return result.stdout, None
    elif kind == "output" and trimmed(content) != trimmed(last_output):
        return last_output, f"expected\n{content}but the commands printed\n{last_output}"
    return last_output, None


def extract(file, name):
    for _, mark, content in blocks(file.read_text(encoding="utf-8")):
        if mark == f"file {name}":
            print(content, end="")
            return 0
    return 1


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("--ci", action="store_true")
    parser.add_argument("--marks", action="store_true")
    parser.add_argument("--examples", type=pathlib.Path)
    parser.add_argument("--extract", metavar="NAME")
    options = parser.parse_args()
    if options.extract:
        return extract(options.file, options.extract)

    passed = failed = 0
    scratch = pathlib.Path(tempfile.mkdtemp(prefix="vs_wml-docs-"))
    if options.examples:
        shutil.copytree(options.examples, scratch / "examples")
    last_output = ""
    for line, mark, content in blocks(options.file.read_text(encoding="utf-8")):
        if mark is not None and not options.marks and (
                mark.startswith("skip") or (mark == "ci") != options.ci):
            continue
        failure = "no `test:` comment before it"
        if mark is not None and options.marks:
            failure = None
        elif mark is not None:
            directory = pathlib.Path.cwd() if options.ci else scratch
            last_output, failure = test(mark, content, directory, last_output)
        if failure:
            failed += 1
            print(f"{options.file}:{line}: {failure}", file=sys.stderr)
        else:
            passed += 1
    shutil.rmtree(scratch)
    print(f"{passed} passed, {failed} failed")
    return 0 if passed > 0 and failed == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
