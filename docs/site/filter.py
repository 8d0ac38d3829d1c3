#!/usr/bin/env python3
"""Writes a document of the repository as Doxygen wants it.

usage: filter.py SOURCE HEADERS FILE

Documents are written for readers of the files, with relative links and GitHub's anchors. Here pages and
headings get the names that Doxygen refers to, links to pages and public headers become references,
and links to what is not in the site become plain text. HEADERS is the folder of the public ones. FILE may also
be a manual page (.scd) or a public header, of which private members are left out.
"""
import html
import os
import pathlib
import re
import subprocess
import sys

CODE = re.compile(r"(`+)(?:(?!\1|\n\n).)+?\1", re.DOTALL)
BOLD = re.compile(r"\*\*([^*]+)\*\*")
LINK = re.compile(r"(!?)\[((?:[^\[\]]|\[[^\]]*\])*)\]\(([^()\s]+)\)")
FENCE = re.compile(r"\s*(```+)\s*(\S*)")
# Languages that Doxygen colours; it takes others for C++.
LANGUAGES = {"cpp": "{.cpp}"}


def pages(source):
    """The documents of the site with the names of their pages."""
    names = {source / "docs/pages/index.md": "mainpage"}
    for path in sorted([*source.glob("*.md"), *source.glob("docs/**/*.md")]):
        names.setdefault(path, path.stem.lower())
    for path in source.glob("docs/man/*.scd"):
        names[path] = "manual"
    names[source / "examples/README.md"] = "examples"
    for path in sorted(source.glob("examples/*/README.md")):
        names[path] = "example-" + path.parent.name
    return names


def headers(folder):
    """The public headers, which FOLDER links under the names by which products include them."""
    return {link.resolve(): str(link.relative_to(folder)) for link in folder.glob("**/*.h")}


def slug(heading, seen):
    """GitHub's anchor of a heading."""
    text = LINK.sub(r"\2", heading).replace("`", "").strip().lower()
    anchor = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
    count = seen.get(anchor, 0)
    seen[anchor] = count + 1
    return f"{anchor}-{count}" if count else anchor


def code(span):
    """A span of code. Doxygen would take some signs for its own, and "file:" for an address; an
    apostrophe would end the span."""
    text = html.escape(span.strip("`")).replace("&#x27;", "'")
    unchanged = text
    for sign, escaped in (("\\", "\\\\"), ("%", "\\%"), ("file:", "file<b></b>:")):
        text = text.replace(sign, escaped)
    text = re.sub(r"(?<= )Input(?= )", "%Input", text)
    return span if text == unchanged and "'" not in span else f"<code>{text}</code>"


def plain(link):
    """A link whose text Doxygen would show with the marks of code, without them."""
    return re.sub("`|</?code>", "", link) if "@ref" in link or "@subpage" in link else link


def label(page, anchor):
    """The name of a heading, unique in the site."""
    return f"{page}--{anchor}"


class Document:
    def __init__(self, source, folder, path):
        self.path = path
        self.pages, self.headers = pages(source), headers(folder)
        self.page = self.pages.get(path, path.stem.lower())
        self.anchors = {}

    def is_below(self, path):
        """Whether that document is in the folder that belongs to this one."""
        if self.page == "examples":
            return path.parent.parent == self.path.parent
        return path.parent == self.path.with_suffix("")

    def link(self, match):
        image, text, target = match.groups()
        if re.match(r"[a-z]+:", target):
            return match.group()
        name, _, anchor = target.partition("#")
        path = pathlib.Path(os.path.normpath(self.path.parent / name)) if name else self.path
        if path / "README.md" in self.pages:
            path /= "README.md"
        if image:
            return f"![{text}]({path.name})"
        if path in self.headers:
            return f"[{text}](@ref {self.headers[path]})"
        if path not in self.pages:
            return text
        page = self.pages[path]
        # Doxygen names the main page "index".
        name = label(page, anchor) if anchor else {"mainpage": "index"}.get(page, page)
        if not anchor and (self.page == "mainpage" or self.is_below(path)):
            return f'@subpage {name} "{text}"'
        return f"[{text}](@ref {name})"

    def prose(self, text):
        # The event bus has the name of an everyday word.
        text = re.sub(r"(?<![%\w:/.<])Input\b(?!::)", "%Input", text)
        return re.sub(r"([@\\])", r"\\\1", text)

    def line(self, text):
        """Lines outside code blocks; what is in backticks stays as it is, but for links."""
        kept = []

        def keep(replacement):
            kept.append(replacement)
            return f"\0{len(kept) - 1}\0"

        def restore(replaced):
            while "\0" in replaced:
                replaced = re.sub("\0(\\d+)\0", lambda match: kept[int(match[1])], replaced)
            return replaced

        text = CODE.sub(lambda match: keep(code(match.group())), text)
        text = LINK.sub(lambda match: keep(plain(restore(self.link(match)))), text)
        return restore(BOLD.sub(r"<b>\1</b>", self.prose(text)))

    def heading(self, marks, text):
        anchor = slug(text, self.anchors)
        if self.page == "mainpage" and len(marks) > 1:
            # Not a section, so that the tree has only pages.
            return f"<h{len(marks) - 1}>{text}</h{len(marks) - 1}>"
        if self.page == "readme":
            text = text.replace("libvorn_input", "README") if len(marks) == 1 else text
        name = self.page if len(marks) == 1 else label(self.page, anchor)
        return f"{marks} {self.line(text)} {{#{name}}}"

    def lines(self):
        fence, paragraph = "", []
        for text in [*self.path.read_text(encoding="utf-8").split("\n"), ""]:
            mark = FENCE.match(text)
            if fence or mark or not text.strip() or re.match("#+ |    |<!--", text):
                if paragraph:
                    yield self.line("\n".join(paragraph))
                    paragraph = []
                if fence:
                    if mark and mark[1] == fence:
                        fence = ""
                    yield text
                elif mark:
                    fence = mark[1]
                    yield text[:mark.end(1)] + LANGUAGES.get(mark[2], "{.unparsed}")
                elif text.startswith("#"):
                    yield self.heading(*text.split(" ", 1))
                else:
                    yield "" if text.startswith("<!--") else text
            else:
                paragraph.append(text)


def header(path):
    """A public header without its private members, line by line."""
    private = False
    for line in path.read_text(encoding="utf-8").split("\n"):
        if re.match(r"(public|protected|Q_SIGNALS)\b|\};", line):
            private = False
        elif re.match(r"private\b", line):
            private = True
        yield "" if private else line


def manual(path):
    roff = subprocess.run(["scdoc"], stdin=path.open(), check=True, stdout=subprocess.PIPE).stdout
    text = subprocess.run(["mandoc", "-T", "html", "-O", "fragment"], input=roff, check=True,
                          stdout=subprocess.PIPE).stdout.decode()
    name, section, _ = path.name.split(".")
    title = f"# {name}({section}) {{#manual}}"
    return f"{title}\n\n@htmlonly[block]\n{text}\n@endhtmlonly\n"


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    source, folder, path = (pathlib.Path(argument).absolute() for argument in sys.argv[1:])
    if path.suffix == ".scd":
        print(manual(path))
    elif path.suffix == ".h":
        print("\n".join(header(path)))
    else:
        print("\n".join(Document(source, folder, path).lines()))


if __name__ == "__main__":
    main()
