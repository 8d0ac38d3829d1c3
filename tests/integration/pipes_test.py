#!/usr/bin/env python3
"""vorn-input waits for a pipe only if it was named on the command line, and one SIGTERM ends the wait.

usage: pipes_test.py SOURCE PROGRAM
"""
import os
import signal
import subprocess
import sys
import tempfile
import time

LIMIT = 10  # seconds


def start(program, arguments, folder):
    return subprocess.Popen([program] + arguments, cwd=folder, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def has_open(process, path):
    folder = f"/proc/{process.pid}/fd"
    try:
        return any(os.path.realpath(os.path.join(folder, name)) == path
                   for name in os.listdir(folder))
    except OSError:
        return False


def finish(process):
    """The exit status and stderr; None for the status of a process that does not end."""
    try:
        _, errors = process.communicate(timeout=LIMIT)
    except subprocess.TimeoutExpired:
        process.kill()
        _, errors = process.communicate()
        return None, errors.decode()
    return process.returncode, errors.decode()


def main():
    source, program = sys.argv[1:]
    failures = []
    profile = os.path.join(os.path.abspath(source), "examples/profiles/player.toml")
    with tempfile.TemporaryDirectory() as folder:
        folder = os.path.realpath(folder)
        pipe = os.path.join(folder, "pipe")
        os.mkfifo(pipe)
        os.symlink(pipe, os.path.join(folder, "pipe.evemu"))
        for name, text in {"include": 'include "pipe"\nwait 1s\n',
                           "profile": 'profile "pipe"\nwait 1s\n',
                           "play": 'play "pipe.evemu"\n',
                           "from": 'device panel from "pipe.evemu"\nwait 1s\n',
                           "wait": "wait 1s\n"}.items():
            with open(os.path.join(folder, name + ".scenario"), "w", encoding="ascii") as file:
                file.write(text)
        with open(os.path.join(folder, "x.evemu"), "w", encoding="ascii") as file:
            file.write("N: x\nE: 1.000000 0001 0073 1\n")

        for arguments in (["check", "pipe"], ["simulate", "pipe"], ["simulate", "pipe.evemu"],
                          ["simulate", "-p", "pipe", "wait.scenario"],
                          ["simulate", "-p", profile, "-e", "pipe", "x.evemu"],
                          ["monitor", "-p", "pipe"], ["timeline", "pipe", "-o", "x.svg"]):
            process = start(program, arguments, folder)
            end = time.monotonic() + LIMIT
            while process.poll() is None and not has_open(process, pipe):
                if time.monotonic() > end:
                    break
                time.sleep(0.01)
            process.send_signal(signal.SIGTERM)
            status, errors = finish(process)
            if status not in (2, -signal.SIGTERM):
                failures.append(f"{arguments}: {status} after SIGTERM; {errors}")

        for name in "include", "profile", "play", "from":
            status, errors = finish(
                start(program, ["simulate", name + ".scenario"]
                      + ([] if name == "profile" else ["-p", profile]), folder))
            if status != 2 or "it is a pipe" not in errors:
                failures.append(f"{name}: {status}; {errors}")

        process = start(program, ["check", "pipe"], folder)
        with open(pipe, "wb") as file:
            file.write(b'[[device]]\n[device.handler.keys]\nKEY_OK = "Confirm"\n')
        status, errors = finish(process)
        if status != 0:
            failures.append(f"a pipe that somebody writes to: {status}; {errors}")
    for failure in failures:
        print("FAILED:", failure)
    if failures:
        sys.exit(1)
    print("PASSED")


if __name__ == "__main__":
    main()
