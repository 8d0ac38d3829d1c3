#!/usr/bin/env python3
"""Nothing that a file, a device or an argument contains controls the terminal, in no message and no
output of any sub-command.

usage: nasty_characters_test.py SOURCE PROGRAM
"""
import json
import os
import subprocess
import sys
import tempfile
import unicodedata

# One of each kind: C0, DEL, C1, directions, no width, separators.
KINDS = ["\x1b[2J", "\x07", "\x7f", "\x9b31m", "\u202e", "\u2066", "\u200e", "\u061c", "\u200b",
         "\ufeff", "\u2028", "\u2029", "\U000e0041"]
# Alone, too: what comes first may end a lookup.
NASTY = [KINDS[0], KINDS[3], "".join(KINDS)]
# File names and arguments are bytes; half a character is none in UTF-8.
BYTES = b"\xed\xa0\x80"

FORBIDDEN = {"Cc", "Cf", "Cs", "Co", "Cn", "Zl", "Zp"}


def write(folder, name, text):
    path = os.path.join(folder, name)
    with open(path, "wb") as file:
        file.write(text if isinstance(text, bytes) else text.encode("utf-8"))
    return path


def offences(output):
    """The characters of an output that a terminal must not get."""
    text = output.decode("utf-8", "surrogateescape")
    return sorted({f"U+{ord(c):04X}" for c in text
                   if c != "\n" and unicodedata.category(c) in FORBIDDEN})


def cases(folder, nasty):
    """Arguments that bring `nasty` into messages and output."""
    quoted = json.dumps(nasty)  # in TOML and JSON the same
    profile = write(folder, "p.toml", f'initial = {quoted}\n[[device]]\nname = {quoted}\n'
                    '[device.handler.keys]\nKEY_OK = "Confirm"\n')
    mistakes = [
        f'initial = "a"\n[[device]]\n[device.handler]\nidentifiers = [{quoted}, {quoted}]\n',
        f'[[device]]\nbus = {quoted}\n',
        f'{quoted} = 1\n[[device]]\n',
        f'[[device]]\n[device.handler.keys]\n{quoted} = "Confirm"\n',
        f'x = {nasty}\n',
    ]
    scenarios = [
        f'{nasty} press\nwait 1s\nwait 1s\n',
        f'device panel\npanel press {nasty}\n',
        f'device panel\nexpect {nasty} KeyPressed\n',
        f'device panel\nexpect Info {nasty}\n',
        f'profile "{nasty}.toml"\nwait 1s\n',
        f'include "{nasty}"\nwait 1s\n',
        f'device panel from "{nasty}.evemu"\nwait 1s\n',
        f'device panel\nselect "{nasty}"\nexpect identifier "x"\n',
        f'device panel name="{nasty}"\npanel click KEY_OK\nexpect Confirm KeyReleased\n',
        f'device panel\npanel unplug\nexpect nothing # {nasty}\nexpect Info KeyPressed from '
        f'"{nasty}"\n',
    ]
    yield ["compile", profile, "-o", "-"]
    for i, text in enumerate(mistakes):
        path = write(folder, f"{i}.toml", text)
        for options in [], ["--json"], ["--color", "always"]:
            yield ["check", path] + options
        yield ["compile", path, "-o", "-"]
        yield ["monitor", "-p", path, "--duration", "0.01"]
    for i, text in enumerate(scenarios):
        path = write(folder, f"{i}.scenario", text)
        for options in [], ["--raw"], ["--json"], ["--quiet"]:
            yield ["simulate", "-p", profile, path] + options
        yield ["simulate", path]
    for i, text in enumerate([f"N: {nasty}\nE: {nasty}\n", f"N: {nasty}\n{nasty}\n",
                              f"P: /devices/{nasty}/event0\nN: input/event{nasty}\n"]):
        for kind in "evemu", "umockdev":
            path = write(folder, f"{i}.{kind}", text)
            yield ["simulate", "-p", profile, path]
    session = write(folder, "s.jsonl", '{"kind": "remark", "time": 0, "text": %s}\n' % quoted)
    yield ["timeline", session, "-o", "-", "--title", nasty]
    broken = write(folder, "b.jsonl", '{"kind": "event", "time": 0, "command": %s}\n' % quoted)
    yield ["timeline", broken, "-o", "-"]
    yield ["explain", session]
    yield ["explain", broken]
    for nastier in nasty.encode("utf-8"), nasty.encode("utf-8") + BYTES:
        name = os.path.join(folder.encode(), b"missing" + nastier)
        for command in "check", "simulate":
            yield [command, name]
        yield ["compile", name, "-o", name]
        yield ["compile", profile, "-o", os.path.join(name, b"x.cpp")]
        yield ["compile", profile, "-o", "-", "--name", nastier]
        yield ["simulate", "-p", name, name + b".evemu"]
        yield ["timeline", name, "-o", name]
        yield ["timeline", session, "-o", os.path.join(name, b"x.svg")]
        yield ["monitor", "-p", name]
        yield ["monitor", "--record", os.path.join(session.encode(), nastier)]
        yield ["monitor", "-p", profile, "--id", nastier, "--duration", "0.01"]
        yield ["learn", "-o", "-", "-c", nastier]
        yield ["learn", "--patience", "0.01", "-o", write(folder, "exists", "x").encode() + b"/" + nastier]
        yield ["learn", "--patience", "0.01", "-o", os.path.join(name, b"x.toml")]
        for command in ("devices", "monitor", "learn", "check", "compile", "simulate", "timeline",
                        "explain"):
            yield [command, b"--" + nastier]
            yield [command, b"x" + nastier, b"y" + nastier]
        yield [nastier]
        yield ["--log", nastier, "devices"]
        yield ["--color", nastier, "devices"]
        yield ["monitor", "--duration", nastier]


def main():
    program = sys.argv[2]
    failures = 0
    count = 0
    for nasty in NASTY:
        with tempfile.TemporaryDirectory() as folder:
            for arguments in cases(folder, nasty):
                result = subprocess.run([program] + arguments, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=30,
                                        check=False)
                count += 1
                output = result.stdout + result.stderr
                # Colours that were asked for.
                if "always" in arguments:
                    for colour in b"\x1b[0m", b"\x1b[1;31m", b"\x1b[1;35m":
                        output = output.replace(colour, b"")
                found = offences(output)
                if found:
                    failures += 1
                    print(f"FAILED: {arguments}: {', '.join(found)} in {output[:300]}")
                if result.returncode not in (0, 1, 2):
                    failures += 1
                    print(f"FAILED: {arguments}: ends with {result.returncode}")
    if failures:
        sys.exit(1)
    print(f"PASSED: {count} runs")


if __name__ == "__main__":
    main()
