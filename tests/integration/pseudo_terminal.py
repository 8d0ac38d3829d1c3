"""A terminal on which a test types."""
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

    def wait_until_line_buffered(self, wanted):
        end = time.monotonic() + SECONDS
        while self.is_line_buffered() != wanted:
            if time.monotonic() > end:
                sys.exit(f"FAILED: expected line buffering to be {wanted}\n{self.text}")
            self.read()

    def status(self):
        end = time.monotonic() + SECONDS
        while self.read():
            if time.monotonic() > end:
                sys.exit(f"FAILED: expected an end\n{self.text}")
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])
