"""Writes many mutants into one source, of which one is switched on at run time."""

from source_text import SourceText

# An error of the compiler in the code of mutant N is reported in the line MARK + N.
MARK = 1000000
EXPRESSIONS = ("expression", "inline")


def instrumented(data, mutations, header):
    """The source with all mutations in it."""
    text = Writer(SourceText(data), mutations).write()
    return f'#include "{header}"\n#line 1\n{text}'.encode()


class Place:
    """Code that some mutations change, or where some put a statement."""

    def __init__(self, start, end):
        self.start = start
        self.end = end
        self.mutations = []
        self.delayed = []
        self.inner = []

    def is_expression(self):
        return bool(self.mutations) and self.mutations[0].how in EXPRESSIONS


class Writer:
    def __init__(self, source, mutations):
        self.source = source
        places = {}
        for mutation in mutations:
            is_expression = mutation.how in EXPRESSIONS
            key = (mutation.start, True, -mutation.end, is_expression)
            place = places.setdefault(key, Place(mutation.start, mutation.end))
            place.mutations.append(mutation)
            place.mutations.sort(key=lambda item: item.kind != "condition")
            if mutation.how == "delay":
                key = (mutation.target, False, 0, False)
                place = places.setdefault(key, Place(mutation.target, mutation.target))
                place.delayed.append(mutation)
        # Of the same code, the statement is outside the expression.
        self.top = Place(0, len(source.data))
        stack = [self.top]
        for key in sorted(places):
            place = places[key]
            while not encloses(stack[-1], place):
                stack.pop()
            stack[-1].inner.append(place)
            stack.append(place)

    def write(self):
        return self.within(self.top)

    def within(self, place):
        """The code of a place, with what is changed within it."""
        parts = []
        offset = place.start
        for inner in place.inner:
            parts.append(self.source.text(offset, inner.start))
            parts.append(self.changed(inner))
            offset = inner.end
        parts.append(self.source.text(offset, place.end))
        return "".join(parts)

    def changed(self, place):
        if place.delayed:
            return self.delayed(place)
        if place.is_expression():
            return self.expression(place)
        return self.statement(place)

    def back(self, offset):
        return f"\n#line {self.source.line(offset)}\n"

    def expression(self, place):
        parts = []
        for mutation in place.mutations:
            choice = f"(vornMutant({mutation.number}) ? ({mutation.after}) : "
            if mutation.how == "expression":
                choice = f"\n#line {MARK + mutation.number}\n{choice}{self.back(place.start)}"
            parts.append(choice)
        # Conditions may be of any type that converts to bool, unlike the alternatives.
        cast = "static_cast<bool>" if place.mutations[0].kind == "condition" else ""
        return "".join(parts) + f"{cast}({self.within(place)})" + ")" * len(place.mutations)

    def statement(self, place):
        parts = ["{ "]
        skipped = []
        for mutation in place.mutations:
            if mutation.how == "statement":
                parts.append(f"\n#line {MARK + mutation.number}\n"
                             f"if (vornMutant({mutation.number})) {{ {mutation.after} }} else ")
            else:
                skipped.append(f"!vornMutant({mutation.number})")
        parts.append(f"if ({' && '.join(skipped) or 'true'}) {{ {self.back(place.start)}")
        parts.append(self.within(place))
        return "".join(parts) + " } }"

    def delayed(self, place):
        parts = []
        for mutation in place.delayed:
            code = self.source.on_one_line(mutation.start, mutation.end)
            parts.append(f"\n#line {MARK + mutation.number}\n"
                         f"if (vornMutant({mutation.number})) {{ {code} }}")
        return "".join(parts) + self.back(place.start)


def encloses(outer, inner):
    if inner.start == inner.end:
        return outer.start < inner.start < outer.end or (outer.start == 0 and not outer.mutations)
    return outer.start <= inner.start and inner.end <= outer.end and outer.start != outer.end
