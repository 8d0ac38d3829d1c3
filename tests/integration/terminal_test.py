#!/usr/bin/env python3
"""vorn-input on a terminal: monitor's colours, and keys that select identifiers and end it; how it
leaves the terminal; how far simulate is.

usage: terminal_test.py SOURCE PROGRAM
"""
import os
import signal
import sys
import tempfile

from pseudo_terminal import Terminal

def monitor(source, program):
    recordings = os.path.join(source, "examples/player/recordings")
    profile = os.path.join(source, "examples/profiles/player.toml")
    return Terminal([os.path.join(recordings, "replay.sh"), "--still", program, "monitor",
                     "--profile", profile])


def simulate(source, program, folder):
    """A key that is held for an hour, with the result where it does not show progress itself."""
    scenario = os.path.join(folder, "hold.scenario")
    with open(scenario, "w") as file:
        file.write('device panel name="front-panel" bus=LocalUI keys=KEY_VOLUMEUP\n'
                   "panel press KEY_VOLUMEUP\nwait 1h\n")
    return Terminal(["sh", "-c", 'exec "$@" >"$0"', os.path.join(folder, "out"), program,
                     "simulate", "--profile",
                     os.path.join(source, "examples/profiles/player.toml"), scenario])


def leave(program):
    """Whatever ends or stops it, the terminal is as it was."""
    for end, status in (signal.SIGTERM, 0), (signal.SIGHUP, 0), (signal.SIGQUIT, -signal.SIGQUIT):
        terminal = Terminal([program, "monitor"])
        terminal.wait_for("q: quit")
        terminal.wait_until_line_buffered(False)
        os.kill(terminal.process, end)
        if terminal.status() != status:
            sys.exit(f"FAILED: {end} does not end it as it should")
        terminal.wait_until_line_buffered(True)

    terminal = Terminal(["sh", "-c", '"$0" monitor | cat', program])
    terminal.wait_for("each with Enter")
    if not terminal.is_line_buffered():
        sys.exit("FAILED: single keys are read although nobody sees what they do")
    terminal.type("q\r")
    terminal.status()

    terminal = Terminal(["bash", "-c", 'set -m; "$0" monitor; echo stop""ped; read -r; fg', program])
    terminal.wait_for("q: quit")
    terminal.wait_until_line_buffered(False)
    terminal.type("\x1a")
    terminal.wait_for("stopped")
    terminal.wait_until_line_buffered(True)
    terminal.type("\r")
    terminal.wait_until_line_buffered(False)
    terminal.type("q")
    if terminal.status() != 0:
        sys.exit("FAILED: it does not go on after a stop")

    # A job in the background would be stopped for changing the terminal.
    terminal = Terminal(["bash", "-c", 'set -m; "$0" monitor --duration 0.5 & wait; echo en""ded',
                         program])
    terminal.wait_for("ended")
    terminal.status()


def main():
    source, program = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        terminal = simulate(source, program, folder)
        terminal.wait_for(" of 3600 s (")
        terminal.wait_for(" %), " + os.path.join(folder, "hold.scenario") + "\r\x1b[K")
        if terminal.status() != 0:
            sys.exit("FAILED: simulate does not end well")
        if terminal.text.rsplit("\x1b[K")[-1]:
            sys.exit("FAILED: the progress is left on the terminal")

    terminal = monitor(source, program)
    terminal.wait_for("1: select 'browse'")
    terminal.wait_for("2: select 'text'")
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
    leave(program)
    print("PASSED")


if __name__ == "__main__":
    main()
