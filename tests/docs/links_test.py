#!/usr/bin/env python3
"""No link of a document leads nowhere, and each document of the site is in its table of contents.

usage: links_test.py SOURCE
       links_test.py SOURCE --site HTML

Checks the relative links and anchors of all Markdown in SOURCE, or those of the pages in HTML. Links to
other places are listed, not followed.
"""
import collections
import html.parser
import pathlib
import re
import sys
import urllib.parse

ANCHOR = re.compile(r"<a (?:id|name)=\"([^\"]+)\"")
REFERENCE = re.compile(r"^\[[^\]]+\]:\s+(\S+)", re.MULTILINE)


def is_elsewhere(target):
    return bool(re.match(r"[a-z][a-z+.-]*:|//", target))


class Markdown:
    """A document: its anchors, as GitHub makes them, and its links."""

    def __init__(self, path, site):
        text = path.read_text(encoding="utf-8")
        prose, seen, self.anchors, fence = [], {}, set(ANCHOR.findall(text)), ""
        for line in text.split("\n"):
            mark = site.FENCE.match(line)
            if mark and (not fence or mark[1] == fence):
                fence = "" if fence else mark[1]
            elif not fence and re.match("#+ ", line):
                self.anchors.add(site.slug(line.split(" ", 1)[1], seen))
                prose.append(line)
            elif not fence and not line.startswith("    "):
                prose.append(line)
        prose = site.CODE.sub("", "\n".join(prose))
        self.links = [match[3] for match in site.LINK.finditer(prose)] + REFERENCE.findall(prose)


class Page(html.parser.HTMLParser):
    """A page of the site: its anchors and links."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attrs):
        for name, value in attrs:
            if name in ("id", "name") and value:
                self.anchors.add(value)
            if (name == "href" or name == "src" or (name == "data" and tag == "object")) and value:
                self.links.append(value)


def dangling(documents, root):
    """Yields what is wrong with the links, and adds up those to other places."""
    elsewhere = collections.Counter()
    for path, document in documents.items():
        for link in document.links:
            if is_elsewhere(link):
                if not link.startswith("javascript:"):
                    elsewhere[link] += 1
                continue
            name, _, anchor = urllib.parse.unquote(link).partition("#")
            target = (path.parent / name).resolve() if name else path
            where = f"{path.relative_to(root)}: {link}"
            if not target.exists():
                yield f"{where} does not exist"
            elif target != root and root not in target.parents:
                yield f"{where} is outside"
            elif anchor and target in documents and anchor not in documents[target].anchors:
                yield f"{where} has no such heading"
    for link in sorted(elsewhere):
        print(f"not followed: {link}")


def not_in_contents(documents, source):
    contents = source / "docs/pages/index.md"
    listed = {(contents.parent / link).resolve() for link in documents[contents].links}
    for path in sorted([*source.glob("docs/*.md"), *source.glob("docs/pages/*.md"),
                        *source.glob("*.md"), *source.glob("docs/man/*.scd"),
                        source / "examples/README.md"]):
        if path not in listed and path != contents:
            yield f"{path.relative_to(source)} is not in the contents of the site"


def main():
    if len(sys.argv) not in (2, 4):
        sys.exit(__doc__)
    source = pathlib.Path(sys.argv[1]).resolve()
    sys.path.insert(0, str(source / "docs/site"))
    sys.dont_write_bytecode = True
    site = __import__("filter")
    if len(sys.argv) == 2:
        root = source
        documents = {path: Markdown(path, site) for path in sorted(source.glob("**/*.md"))
                     if not re.match(r"build|\.", str(path.relative_to(source)))}
        failures = list(not_in_contents(documents, source))
    else:
        root = pathlib.Path(sys.argv[3]).resolve()
        documents = {path: Page(path) for path in sorted(root.glob("**/*.html"))}
        failures = []
    links = sum(len(document.links) for document in documents.values())
    failures += dangling(documents, root)
    if len(documents) < 10 or links < 50:
        failures.append(f"only {len(documents)} documents with {links} links found")
    for failure in failures:
        print("FAILED:", failure)
    if failures:
        sys.exit(1)
    print(f"PASSED: {len(documents)} documents, {links} links")


if __name__ == "__main__":
    main()
