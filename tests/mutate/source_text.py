"""A C++ source as text: offsets, lines, brackets, and statements on one line."""

import bisect
import re

# What the scanner steps over as a whole: comments, strings, characters.
OPAQUE = re.compile(
    rb'//[^\n]*|/\*.*?\*/|R"(?P<tag>[^(\s]*)\(.*?\)(?P=tag)"|"(?:\\.|[^"\\\n])*"'
    rb"|'(?:\\.|[^'\\\n])+'",
    re.DOTALL)
STRING = re.compile(rb'"(?:\\.|[^"\\\n])*"')


class SourceText:
    """The bytes of a file. Offsets are those of the compiler, so they count bytes."""

    def __init__(self, data):
        self.data = data
        self.starts = [0] + [match.end() for match in re.finditer(rb"\n", data)]

    def text(self, start, end):
        return self.data[start:end].decode()

    def line(self, offset):
        return bisect.bisect_right(self.starts, offset)

    def skip(self, offset):
        """The next offset that is neither blank nor in a comment."""
        while offset < len(self.data):
            if self.data[offset:offset + 1].isspace():
                offset += 1
                continue
            match = OPAQUE.match(self.data, offset)
            if not match or self.data[offset:offset + 1] != b"/":
                return offset
            offset = match.end()
        return offset

    def closing(self, opening):
        """The offset of the bracket that closes the one at opening."""
        depth = 0
        offset = opening
        while offset < len(self.data):
            match = OPAQUE.match(self.data, offset)
            # A ' between digits is no character.
            if match and not (self.data[offset:offset + 1] == b"'"
                              and self.data[offset - 1:offset].isdigit()):
                offset = match.end()
                continue
            character = self.data[offset:offset + 1]
            if character in b"([{":
                depth += 1
            elif character in b")]}":
                depth -= 1
                if depth == 0:
                    return offset
            offset += 1
        raise ValueError("a bracket is not closed")

    def after_semicolon(self, offset):
        """The end of a statement whose text ends at offset, with its semicolon if it has one."""
        following = self.skip(offset)
        return following + 1 if self.data[following:following + 1] == b";" else offset

    def on_one_line(self, start, end):
        """The code without comments, on one line; None if that would change what it means."""
        code = self.data[start:end]
        if re.search(rb"^\s*#", code, re.MULTILINE) or b'R"' in code:
            return None
        parts = []
        offset = 0
        while offset < len(code):
            match = OPAQUE.match(code, offset)
            if match:
                parts.append(b" " if code[offset:offset + 1] == b"/" else match.group())
                offset = match.end()
            else:
                parts.append(code[offset:offset + 1])
                offset += 1
        return " ".join(b"".join(parts).decode().split("\n")).strip()
