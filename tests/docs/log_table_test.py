#!/usr/bin/env python3
"""The table of messages has every message of the library, and no other.

usage: log_table_test.py SOURCE
"""
import pathlib
import re
import sys

LOGGER = re.compile(r'Logger::getInstance\(LOG4CPLUS_TEXT\("(\w+)"\)\)')
MACRO = re.compile(r"\bLOG4CPLUS_(TRACE|DEBUG|INFO|WARN|ERROR|FATAL)(?:_STR|_FMT)?\(\s*logger\s*,")
FORCED = re.compile(r"forcedLog\(log4cplus::(\w+)_LOG_LEVEL")
STRING = re.compile(r'"((?:[^"\\]|\\.)*)"')
STATEMENT = re.compile(r'(?:"(?:[^"\\]|\\.)*"|[^";])*')
ROW = re.compile(r"^\| `(\w+)` \| (\w+) \| `([^`]+)` \|")


def argument(text, start):
    """The text from START to the parenthesis that closes."""
    depth, at = 1, start
    while depth:
        string = STRING.match(text, at)
        if string:
            at = string.end()
            continue
        depth += {"(": 1, ")": -1}.get(text[at], 0)
        at += 1
    return text[start:at - 1]


def operands(expression):
    """The operands of <<, at the outermost level."""
    depth, start, at, found = 0, 0, 0, []
    while at < len(expression):
        string = STRING.match(expression, at)
        if string:
            at = string.end()
            continue
        depth += {"(": 1, ")": -1}.get(expression[at], 0)
        if depth == 0 and expression.startswith("<<", at):
            found.append(expression[start:at].strip())
            start = at = at + 2
            continue
        at += 1
    return found + [expression[start:].strip()]


def message(expression):
    """The message with "…" for each value; one for values that follow each other."""
    parts = []
    for operand in operands(expression):
        literals = STRING.findall(operand)
        only_literals = not STRING.sub("", operand).strip()
        parts.append("".join(literals) if literals and only_literals else "…")
    return re.sub("…+", "…", "".join(parts))


def messages(path):
    text = path.read_text(encoding="utf-8")
    logger = LOGGER.search(text)
    text = re.sub(r"//[^\n]*", "", text).replace("\\\n", "")
    name = logger.group(1) if logger else None
    for match in MACRO.finditer(text):
        yield name, match.group(1), message(argument(text, match.end()))
    for match in FORCED.finditer(text):
        statement = text[:match.start()].rpartition("text <<")[2]
        yield name, match.group(1), message(STATEMENT.match(statement).group())
    calls = len(re.findall(r"\bLOG4CPLUS_[A-Z]+\w*\(|forcedLog\(|\.log\(", text))
    known = len(MACRO.findall(text)) + len(FORCED.findall(text))
    known += len(re.findall(r"\bLOG4CPLUS_TEXT\(", text))
    if calls != known:
        sys.exit(f"FAILED: {path} logs in a way that this test does not know")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    source = pathlib.Path(sys.argv[1])
    page = (source / "docs/pages/logging.md").read_text(encoding="utf-8")
    shown = {match.groups() for match in map(ROW.match, page.split("\n")) if match}
    written, assertions = set(), set()
    for path in sorted([*source.glob("src/lib/**/*.cpp"), *source.glob("src/api/**/*.cpp"),
                        *source.glob("src/lib/**/*.h"), *source.glob("src/api/**/*.h")]):
        written.update(messages(path))
        assertions.update(re.findall(r'qt_assert\("([^"]+)"', path.read_text(encoding="utf-8")))
    failures = [f"the table lacks {row}" for row in sorted(written - shown)]
    failures += [f"no source writes {row}" for row in sorted(shown - written)]
    failures += [f"the table lacks the assertion {text}" for text in sorted(assertions)
                 if f"| `{text}` |" not in page]
    if len(written) < 20 or not assertions:
        failures.append(f"only {len(written)} messages and {len(assertions)} assertions found")
    for failure in failures:
        print("FAILED:", failure)
    if failures:
        sys.exit(1)
    print(f"PASSED: {len(written)} messages, {len(assertions)} assertions")


if __name__ == "__main__":
    main()
