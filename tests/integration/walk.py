#!/usr/bin/env python3
"""Goes through the console blocks of a document and compares what comes out with what it shows.

usage: walk.py DOCUMENT FOLDER

In each block that begins with ```console, a line "$ COMMAND" is run by one and the same shell, which
starts in FOLDER. A command goes on in the next line after a backslash, or to the line "END" after
<<'END'. The lines below it are the expected output, both streams together. In them "…" stands for
any text, and a line "…" for any number of lines. Ends with 1 and a comparison at the first
difference.
"""
import difflib
import re
import subprocess
import sys


def blocks(text):
    """Yields the lines of each console block, and the number of the first."""
    lines = text.split("\n")
    start = None
    for number, line in enumerate(lines, 1):
        if not line.startswith("```"):
            continue
        if start is None:
            start, kind = number, line[3:].strip()
        else:
            if kind == "console":
                yield lines[start:number - 1], start + 1
            start = None
    if start is not None:
        sys.exit(f"walk.py: the block in line {start} has no end")


def steps(lines, first):
    """Yields (command, expected lines, line number) of a console block."""
    command, expected, at, goes_on = None, [], first, None
    for number, line in enumerate(lines, first):
        if goes_on:
            command += "\n" + line
            if goes_on == "END":
                goes_on = None if line == "END" else "END"
            else:
                goes_on = continuation(line)
        elif line.startswith("$ "):
            if command is not None:
                yield command, expected, at
            command, expected, at = line[2:], [], number
            goes_on = continuation(line)
        elif command is None:
            sys.exit(f"walk.py: line {number} shows output without a command")
        else:
            expected.append(line)
    if command is not None:
        yield command, expected, at


def continuation(line):
    if "<<'END'" in line:
        return "END"
    return "\\" if line.endswith("\\") else None


def pattern(expected):
    parts = []
    for line in expected:
        if line.strip() == "…":
            parts.append(r"(?:[^\n]*\n)*?")
        else:
            parts.append(re.escape(line.rstrip()).replace("…", r"[^\n]*") + r"[ ]*\n")
    return "".join(parts)


class Shell:
    """One shell for the whole document, as for a reader."""

    end = "--- end of a step:"

    def __init__(self, folder):
        self.process = subprocess.Popen(
            ["bash"], cwd=folder, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, encoding="utf-8", errors="replace")

    def run(self, command):
        # Without its input, which is the script itself.
        self.process.stdin.write(
            f"{{ {command}\n}} </dev/null\nstatus=$?\nprintf '\\n%s\\n' '{self.end}'\n"
            "( exit $status )\n")
        self.process.stdin.flush()
        output = []
        for line in self.process.stdout:
            if line.rstrip("\n") == self.end:
                break
            output.append(line)
        else:
            sys.exit(f"walk.py: the shell ended in: {command}")
        # The empty line was put there for output that does not end with one.
        text = "".join(output)[:-1]
        return text if text.endswith("\n") or not text else text + "\n"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    document, folder = sys.argv[1:]
    with open(document, encoding="utf-8") as file:
        text = file.read()
    shell = Shell(folder)
    count = 0
    for lines, first in blocks(text):
        for command, expected, number in steps(lines, first):
            print(f"{document}:{number}: $ {command}", flush=True)
            output = shell.run(command)
            count += 1
            if not re.fullmatch(pattern(expected), output):
                print("FAILED, expected (-) and found (+):")
                for line in difflib.unified_diff([line.rstrip() for line in expected],
                                                 [line.rstrip() for line in output.splitlines()],
                                                 lineterm="", n=1000):
                    print("  " + line)
                sys.exit(1)
    if count == 0:
        sys.exit(f"walk.py: nothing to do in {document}")
    print(f"PASSED: {count} commands")


if __name__ == "__main__":
    main()
