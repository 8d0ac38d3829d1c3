"""What a mutant is."""

import dataclasses


@dataclasses.dataclass
class Mutation:
    """One change to a source.

    how says what is done to the code from start to end:
      expression  it is replaced by after, an expression
      inline      the same within the arguments of a macro
      statement   it is replaced by after, a statement
      remove      it is left out
      delay       it is executed after the statement that ends at target
    """

    file: str
    function: str
    kind: str
    how: str
    start: int
    end: int
    line: int
    before: str
    after: str
    target: int = 0
    occurrence: int = 0
    number: int = 0

    def change(self):
        """The change, as people read it and as the list of equivalents has it."""
        if self.how == "remove":
            return f"{self.before} → (nothing)"
        if self.how == "delay":
            return f"{self.before} → after {self.after}"
        return f"{self.before} → {self.after}"

    def key(self):
        """Names it, in spite of lines that move."""
        parts = [self.file, self.function, self.kind, self.change()]
        return " | ".join(parts) + (f" | {self.occurrence}" if self.occurrence else "")


def short(text, limit=90):
    """Code for a table."""
    text = " ".join(text.split())
    return text if len(text) <= limit else text[:limit - 1] + "…"


def count_occurrences(mutations):
    """Tells mutations apart that are the same in the same function."""
    seen = {}
    for mutation in mutations:
        key = mutation.key()
        mutation.occurrence = seen.get(key, 0)
        seen[key] = mutation.occurrence + 1
