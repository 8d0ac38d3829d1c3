#!/usr/bin/env python3
"""bash and zsh complete what vorn-input understands: every sub-command and option in its help and no
others, values where an option takes one, and files of the right kind.

usage: completion_test.py SOURCE PROGRAM
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

from pseudo_terminal import Terminal

# Where completion takes place; "/" is a folder.
FILES = ["panel.svg", "panel.toml", "panel.txt", "pictures/"]

# What is typed before the tabulator, and the line after it.
TYPED = [
    ("vorn-input sim", "vorn-input simulate "),
    ("vorn-input monitor --rec", "vorn-input monitor --record "),
    ("vorn-input --col", "vorn-input --color "),
    ("vorn-input --log inf", "vorn-input --log info "),
    ("vorn-input --log info tim", "vorn-input --log info timeline "),
    ("vorn-input check pan", "vorn-input check panel.toml "),
    ("vorn-input monitor -p pan", "vorn-input monitor -p panel.toml "),
    ("vorn-input simulate --profile pan", "vorn-input simulate --profile panel.toml "),
    ("vorn-input learn --output pan", "vorn-input learn --output panel.toml "),
    ("vorn-input timeline panel.tx", "vorn-input timeline panel.txt "),
    ("vorn-input drive --virt", "vorn-input drive --virtual-time "),
    ("vorn-input help sim", "vorn-input help simulate "),
    ("vorn-input check --strict --js", "vorn-input check --strict --json "),
]

# The files that are offered where a value or an argument is one. Where folders can be entered on the
# way, they are offered, too.
FILES_OFFERED = {
    ("monitor", "--profile"): ["panel.toml", "pictures"],
    ("monitor", "--record"): ["pictures"],
    ("learn", "--output"): ["panel.toml", "pictures"],
    ("check",): ["panel.toml", "pictures"],
    ("compile",): ["panel.toml", "pictures"],
    ("compile", "--output"): ["pictures"],
    ("compile", "--header"): ["pictures"],
    ("simulate", "--profile"): ["panel.toml", "pictures"],
    ("simulate", "--expectations"): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
    ("simulate", "--timeline"): ["panel.svg", "pictures"],
    ("drive", "--profile"): ["panel.toml", "pictures"],
    ("drive", "--expectations"): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
    ("drive", "--timeline"): ["panel.svg", "pictures"],
    ("drive",): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
    ("drive", "panel.txt", "--", "panel.svg"): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
    ("simulate",): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
    ("timeline", "--output"): ["panel.svg", "pictures"],
    ("timeline",): ["panel.svg", "panel.toml", "panel.txt", "pictures"],
}

# What zsh's functions are called with, in place of what they offer.
ZSH_STUBS = r"""
_arguments() {
    if [[ $1 = -C ]]; then
        shift
        print -rl -- "common "$^@
        state=$STATE line=($COMMAND)
    else
        print -rl -- "command "$^@
    fi
}
_describe() { print -rl -- "describe "${(P)^2} }
"""

failures = []


def expect(what, expected, found):
    if expected != found:
        failures.append(f"{what}: expected {expected}, found {found}")


class Help:
    """What the program says that it understands."""

    def __init__(self, program, command=None):
        text = subprocess.run([program] + ([command] if command else []) + ["--help"], check=True,
                              capture_output=True, text=True).stdout
        sections = {}
        for line in text.split("\n"):
            title = re.fullmatch(r"([A-Z]\w+):", line)
            if title:
                section = sections.setdefault(title[1], [])
            elif not line:
                section = []
            elif sections:
                section.append(line)
        self.commands = [line.split()[0] for line in sections.get("Subcommands", [])]
        self.takes_files = any(line.split()[0] == "FILE"
                               for line in sections.get("Positionals", []))
        # Each name, short or long, with whether a value follows it.
        self.options = {}
        for line in sections["Options"]:
            option = re.match(r"  (-\w,)?(--[a-z-]+)( [A-Z]\S*)?( \.\.\.)?(  |$| REQUIRED)", line)
            if not option:
                sys.exit(f"FAILED: not understood in the help: {line!r}")
            names = [option[2]] + ([option[1][:-1]] if option[1] else [])
            self.options.update({name: bool(option[3]) for name in names})
        # Everything has --help, which nobody needs to abbreviate.
        self.options.pop("-h", None)


def bash(completions, *words):
    """What bash offers for the last of the words."""
    script = ('compopt() { :; }; . "$0/vorn-input.bash"; COMP_WORDS=(vorn-input "$@"); '
              'COMP_CWORD=$#; COMPREPLY=(); _vorn_input; printf "%s\\n" "${COMPREPLY[@]}"')
    done = subprocess.run(["bash", "--norc", "--noprofile", "-c", script, completions, *words],
                          check=True, capture_output=True, text=True)
    expect(f"bash's messages for {words}", "", done.stderr)
    return done.stdout.split()


def zsh(completions, command):
    """The specifications of the common and of the command's options, and the commands."""
    done = subprocess.run(
        ["zsh", "-f", "-c", ZSH_STUBS + '. "$0/_vorn-input"', completions], check=True,
        capture_output=True, text=True,
        env={**os.environ, "STATE": "argument" if command else "command", "COMMAND": command or ""})
    expect(f"zsh's messages for {command}", "", done.stderr)
    lists = {"common": [], "command": [], "describe": []}
    for line in done.stdout.splitlines():
        kind, specification = line.split(" ", 1)
        lists[kind].append(specification)
    return lists


def zsh_options(specifications):
    """As Help.options, of specifications such as (-p --profile)-p[what]:profile:_files."""
    options = {}
    for specification in specifications:
        option = re.fullmatch(r"(\((.*?)\))?(--?[a-z-]+)\[[^][]+\](:.+)?", specification)
        if option:
            options[option[3]] = bool(option[4])
            if option[2]:
                expect(f"zsh: names beside {option[3]}", True, option[3] in option[2].split())
        elif specification.startswith("-") or specification.startswith("("):
            failures.append(f"zsh: not understood: {specification}")
    return options


def check_bash(completions, program_help, command_helps):
    common = {name for name in program_help.options if name != "--version"}
    expect("bash: commands and common options",
           sorted(program_help.commands + list(program_help.options)), sorted(bash(completions, "")))
    for command, command_help in command_helps.items():
        offered = {name for name in command_help.options if name.startswith("--")}
        expect(f"bash: options of {command}", sorted(offered | common),
               sorted(bash(completions, command, "--")))
        for name, takes_value in {**command_help.options, **program_help.options}.items():
            if name != "--version":
                expect(f"bash: whether {command} {name} takes a value", takes_value,
                       not bash(completions, command, name, "--"))
        expect(f"bash: whether {command} takes files", command_help.takes_files,
               "panel.toml" in bash(completions, command, ""))
    expect("bash: options behind drive's dashes", [], bash(completions, "drive", "x", "--", "--ra"))
    expect("bash: programs behind drive's dashes", True,
           "sh" in bash(completions, "drive", "x", "--", "sh"))
    for words, files in FILES_OFFERED.items():
        expect(f"bash: files for {words}", files, sorted(set(bash(completions, *words, ""))))


def check_zsh(completions, program_help, command_helps):
    main = zsh(completions, None)
    expect("zsh: common options", program_help.options, zsh_options(main["common"]))
    expect("zsh: commands", program_help.commands,
           [line.split(":")[0] for line in main["describe"]])
    common = {name: value for name, value in program_help.options.items() if name != "--version"}
    for command, command_help in command_helps.items():
        specifications = zsh(completions, command)["command"]
        expect(f"zsh: options of {command}", {**command_help.options, **common},
               zsh_options(specifications))
        expect(f"zsh: whether {command} takes files", command_help.takes_files,
               any(re.match(r"[*1]:.*_files", each) for each in specifications))


def check_typing(command, load):
    """Types into a real shell, which is the only one to know what a line becomes."""
    terminal = Terminal(command)
    # The program's place is taken by one that prints its arguments between brackets.
    terminal.type(load + "; vorn-input() { printf '<%s>' vorn-input \"$@\"; echo; }; "
                  "echo rea''dy\r")
    terminal.wait_for("ready")
    for typed, completed in TYPED:
        terminal.type(typed + "\t")
        terminal.type("\r")
        terminal.wait_for("".join(f"<{word}>" for word in completed.split()) + "\r\n")
    terminal.type("exit\r")
    terminal.status()


def main():
    source, program = (os.path.abspath(argument) for argument in sys.argv[1:])
    for shell in "bash", "zsh":
        if not shutil.which(shell):
            print(f"SKIPPED: {shell} is missing")
            sys.exit(77)
    completions = os.path.join(source, "packaging/completions")
    program_help = Help(program)
    command_helps = {command: Help(program, command) for command in program_help.commands}
    if len(command_helps) < 6 or sum(len(each.options) for each in command_helps.values()) < 25:
        sys.exit("FAILED: the help is not understood")

    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        for name in FILES:
            if name.endswith("/"):
                os.mkdir(name)
            else:
                open(name, "w").close()
        check_bash(completions, program_help, command_helps)
        check_zsh(completions, program_help, command_helps)
        for failure in failures:
            print(f"FAILED: {failure}")
        if failures:
            sys.exit(1)
        check_typing(["bash", "--norc", "--noprofile", "-i"],
                     "PS1='> '; bind 'set enable-bracketed-paste off'; "
                     f". '{completions}/vorn-input.bash'")
        check_typing(["zsh", "-f", "-i"],
                     "PS1='> '; unsetopt prompt_sp prompt_cr zle_bracketed_paste; "
                     f"fpath=('{completions}' $fpath); autoload -U compinit; compinit -u -D")
    print("PASSED")


if __name__ == "__main__":
    main()
