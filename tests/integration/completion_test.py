#!/usr/bin/env python3
"""What bash and zsh make of the first letters of vorn-input's sub-commands, options and values.

usage: completion_test.py SOURCE
"""
import os
import shutil
import sys
import tempfile

from pseudo_terminal import Terminal

# What is typed before the tabulator, and what the line is after it.
TYPED = [
    ("vorn-input sim", "vorn-input simulate "),
    ("vorn-input monitor --rec", "vorn-input monitor --record "),
    ("vorn-input --col", "vorn-input --color "),
    ("vorn-input --log inf", "vorn-input --log info "),
    ("vorn-input --log info tim", "vorn-input --log info timeline "),
    ("vorn-input check pan", "vorn-input check panel.toml "),
    ("vorn-input learn --output pan", "vorn-input learn --output panel.toml "),
    ("vorn-input check --strict --js", "vorn-input check --strict --json "),
]


def shells(source):
    """Each shell with the command that loads its completions; prompts are a plain sign."""
    completions = os.path.join(source, "packaging/completions")
    yield ["bash", "--norc", "--noprofile", "-i"], (
        f"PS1='> '; bind 'set enable-bracketed-paste off'; . '{completions}/vorn-input.bash'")
    yield ["zsh", "-f", "-i"], (
        "PS1='> '; unsetopt prompt_sp prompt_cr zle_bracketed_paste; "
        f"fpath=('{completions}' $fpath); autoload -U compinit; compinit -u -D")


def main():
    source = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        with open("panel.toml", "w") as file:
            file.write("{}")
        for command, load in shells(source):
            if not shutil.which(command[0]):
                print(f"SKIPPED: {command[0]} is missing")
                sys.exit(77)
            # What the line is afterwards is told by the shell itself: each is a command that
            # prints its words between brackets.
            terminal = Terminal(command)
            terminal.type(load + "; vorn-input() { printf '<%s>' vorn-input \"$@\"; echo; }; "
                          "echo rea''dy\r")
            terminal.wait_for("ready")
            for typed, completed in TYPED:
                terminal.type(typed + "\t")
                terminal.type("\r")
                terminal.wait_for("".join(f"<{word}>" for word in completed.split()) + "\r\n")
            terminal.type("exit\r")
            terminal.status()
    print("PASSED")


if __name__ == "__main__":
    main()
