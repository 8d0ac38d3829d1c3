"""Mutants that nothing can tell from the original, with the reasons."""

import os
import tomllib


class Equivalents:
    def __init__(self, entries):
        self.entries = {
            (item["file"], item["function"], item["kind"], item["change"],
             item.get("occurrence", 0)): item["reason"] for item in entries}
        self.used = set()

    @staticmethod
    def read(folder):
        with open(os.path.join(folder, "equivalent.toml"), "rb") as file:
            return Equivalents(tomllib.load(file).get("equivalent", []))

    def reason(self, mutation):
        """Why nobody can notice; None if somebody should."""
        key = (mutation.file, mutation.function, mutation.kind, mutation.change(),
               mutation.occurrence)
        if key in self.entries:
            self.used.add(key)
        return self.entries.get(key)
