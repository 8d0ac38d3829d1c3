#!/usr/bin/env python3
"""vorn-input monitor on a terminal: colours, and keys that select identifiers and end it.

usage: terminal_test.py SOURCE PROGRAM
"""
import os
import pty
import select
import sys
import termios
import time

SECONDS = 30


class Terminal:
    def __init__(self, arguments):
        self.text = ""
        self.process, self.descriptor = pty.fork()
        if self.process == 0:
            os.environ["TERM"] = "xterm"
            os.environ.pop("NO_COLOR", None)
            os.execvp(arguments[0], arguments)

    def read(self):
        """Takes what is there; returns whether the other end is open."""
        if not select.select([self.descriptor], [], [], 0.1)[0]:
            return True
        try:
            data = os.read(self.descriptor, 4096)
        except OSError:
            return False
        self.text += data.decode("utf-8", "replace")
        return bool(data)

    def wait_for(self, wanted):
        end = time.monotonic() + SECONDS
        while wanted not in self.text:
            if not self.read() or time.monotonic() > end:
                sys.exit(f"FAILED: expected {wanted!r} in\n{self.text}")
        self.text = self.text[self.text.index(wanted) + len(wanted):]

    def type(self, key):
        os.write(self.descriptor, key.encode())

    def is_line_buffered(self):
        return bool(termios.tcgetattr(self.descriptor)[3] & termios.ICANON)

    def status(self):
        end = time.monotonic() + SECONDS
        while self.read():
            if time.monotonic() > end:
                sys.exit(f"FAILED: expected an end\n{self.text}")
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


def monitor(source, program):
    recordings = os.path.join(source, "examples/player/recordings")
    profile = os.path.join(source, "examples/profiles/player.json")
    return Terminal([os.path.join(recordings, "replay.sh"), "--still", program, "monitor",
                     "--profile", profile])


def main():
    source, program = sys.argv[1:]
    terminal = monitor(source, program)
    terminal.wait_for("1: select 'browse'   2: select 'text'")
    terminal.wait_for("\x1b[")
    terminal.wait_for("front-panel-jacks")
    if terminal.is_line_buffered():
        sys.exit("FAILED: single keys are not read")
    terminal.type("2")
    terminal.wait_for("identifier 'text'")
    terminal.type("1")
    terminal.wait_for("identifier 'browse'")
    terminal.type("9")
    terminal.type("?")
    terminal.wait_for("q: quit")
    terminal.type("q")
    if terminal.status() != 0:
        sys.exit("FAILED: q does not end it cleanly")

    terminal = monitor(source, program)
    terminal.wait_for("front-panel-jacks")
    terminal.type("\x03")
    if terminal.status() != 0:
        sys.exit("FAILED: Ctrl-C does not end it cleanly")
    print("PASSED")


if __name__ == "__main__":
    main()
