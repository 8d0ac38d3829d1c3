#!/usr/bin/env python3
"""Makes a test of the C++ examples in documents or headers.

usage: extract.py SOURCE OUT.cpp FILE...

Takes the blocks ```cpp of Markdown and @code of headers. What a block is can be seen from it:

- definitions (it begins with a class, a test, a function, #include) are compiled in a namespace of the
  document, its tests are run;
- members (it begins with a function with "override") make a device manager, which is run as one that is
  defined as a whole: a simulated panel arrives, is used and goes;
- statements, and everything else in headers, are run inside a product, see Surroundings.h. They must log
  no mistake. "expression; // "text"" says what the expression is, and is checked.

In Markdown a comment before a block says otherwise, unseen by readers:

    <!-- example: global -->        definitions outside all namespaces
    <!-- example: from FILE -->     the block is a part of FILE, which is compiled anyway
"""
import pathlib
import re
import sys
import textwrap

KIND = re.compile(r"<!-- example: (\w+)(?: (\S+))? -->")
DEFINITIONS = re.compile(r"(class|struct|TEST|namespace|template|using|int main|constexpr)\b")
MEMBERS = re.compile(r"[\w:<>,*& ]+\([^)]*\)\s*(const\s*)?override\b")
RESULT = re.compile(r'^(\s*)([^/;]+);\s*// ("[^"…]*")$', re.MULTILINE)
MANAGER = re.compile(r"^class (\w+) : public BasicInputHandler", re.MULTILINE)
INCLUDE = re.compile(r"^#include .*$", re.MULTILINE)


def blocks_of_markdown(lines):
    """Yields line number, kind, file and text of each block."""
    start, language, kind = None, "", (None, None)
    for number, line in enumerate(lines, 1):
        comment = KIND.fullmatch(line)
        if comment and start is None:
            kind = comment.groups()
        elif line.startswith("```") and start is not None:
            if language == "cpp":
                yield start + 1, *kind, "\n".join(lines[start:number - 1])
                kind = (None, None)
            start = None
        elif line.startswith("```"):
            start, language = number, line[3:].strip()


def blocks_of_header(lines):
    start = None
    for number, line in enumerate(lines, 1):
        text = re.sub(r"^\s*/// ?", "", line)
        if text == "@code":
            start = number
        elif text == "@endcode":
            block = "\n".join(re.sub(r"^\s*/// ?", "", line) for line in lines[start:number - 1])
            yield start + 1, None if MANAGER.match(block) else "statements", None, block


def kind_of(text):
    first = INCLUDE.sub("", text).strip()
    if DEFINITIONS.match(first):
        return "definitions"
    return "members" if MEMBERS.match(first) else "statements"


def test(name, number, call):
    return f"""namespace {name} {{
TEST(DocumentedExamples, {name.replace("examples_of", "Of")}_Line{number})
{{
    {call}();
}}
}}"""


def surroundings(text):
    """The class that statements are run in: what a block makes itself, there must not be twice."""
    if "InputSubsystem subsystem" in text or "VirtualClock clock" in text:
        return "Nothing"
    if "subsystem.plug" in text:
        return "Simulation"
    return "ProductWithProfile" if "devices.setProfile" in text else "Product"


class Source:
    """One source of tests."""

    def __init__(self, source):
        self.source = source
        self.includes, self.globals, self.body, self.count = [], [], [], 0

    def add(self, path):
        lines = path.read_text(encoding="utf-8").split("\n")
        blocks = blocks_of_markdown if path.suffix == ".md" else blocks_of_header
        name = "examples_of_" + re.sub(r"\W", "_", path.stem)
        for number, kind, file, text in blocks(lines):
            self.count += 1
            where = f'#line {number} "{path}"'
            self.includes += INCLUDE.findall(text)
            code = INCLUDE.sub("", text).replace(
                "/etc/player/panel.toml", str(self.source / "examples/profiles/player.toml"))
            kind = kind or kind_of(text)
            if kind == "from":
                self.find(text, file, f"{path}:{number}")
            elif kind == "global":
                self.globals.append(f"{where}\n{code}")
            elif kind == "definitions":
                self.body.append(f"namespace {name} {{\n{where}\n{code}\n}}")
                for manager in MANAGER.findall(text):
                    self.body.append(test(name, number, f"runMembers<{manager}>"))
            elif kind == "members":
                self.body.append(f"""namespace {name} {{
class Members{number} : public BasicInputHandler
{{
{where}
{code}
}};
}}""")
                self.body.append(test(name, number, f"runMembers<Members{number}>"))
            elif kind == "statements":
                code = RESULT.sub(r"\1EXPECT_EQ(QString(\2), QString(\3));", code)
                self.body.append(f"""namespace {name} {{
struct Statements{number} : {surroundings(text)}
{{
    int run()
    {{
{where}
{code}
        return 0;
    }}
}};
}}""")
                self.body.append(test(name, number, f"runStatements<Statements{number}>"))
            else:
                sys.exit(f"{path}:{number}: unknown kind of example '{kind}'")

    def find(self, text, file, where):
        """The block as it is must be in the file, which the compiler sees there."""
        if textwrap.dedent(text) not in textwrap.dedent((self.source / file).read_text()):
            sys.exit(f"{where}: this is not in {file}")

    def text(self):
        includes = "\n".join(dict.fromkeys(re.sub(r"\s*//.*", "", line) for line in self.includes))
        return f'{includes}\n#include "Surroundings.h"\n\n' + "\n\n".join(
            [*self.globals, *self.body]) + "\n"


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    source = Source(pathlib.Path(sys.argv[1]).resolve())
    for path in sys.argv[3:]:
        source.add(pathlib.Path(path).resolve())
    if source.count == 0:
        sys.exit("extract.py: no examples")
    pathlib.Path(sys.argv[2]).write_text(source.text(), encoding="utf-8")


if __name__ == "__main__":
    main()
