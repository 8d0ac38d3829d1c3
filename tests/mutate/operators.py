"""What a piece of code may be exchanged for."""

import re

RELATIONS = {
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "==": ["!="],
    "!=": ["=="],
}
# For numbers only: other types often have no order.
NUMBER_RELATIONS = {"==": ["<=", ">="], "!=": ["<", ">"]}
ARITHMETIC = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["/"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["|"],
}
ASSIGNMENTS = {
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["/="],
    "<<=": [">>="], ">>=": ["<<="], "&=": ["|="], "|=": ["&="], "^=": ["|="],
}
# Functions with a counterpart that takes the same arguments.
COUNTERPARTS = {
    "min": "max", "max": "min",
    "startsWith": "endsWith", "endsWith": "startsWith",
    "first": "last", "last": "first", "front": "back", "back": "front",
    "append": "prepend", "prepend": "append",
    "indexOf": "lastIndexOf", "lastIndexOf": "indexOf",
    "all_of": "any_of", "any_of": "all_of", "none_of": "any_of",
    "lower_bound": "upper_bound", "upper_bound": "lower_bound",
}
LOG_LEVELS = ["TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL"]


def neighbouring_levels(level):
    place = LOG_LEVELS.index(level)
    return [LOG_LEVELS[other] for other in (place - 1, place + 1) if 0 <= other < len(LOG_LEVELS)]


def binary(operator, left, right, numbers):
    """What `left operator right` may be exchanged for: (kind, code)."""
    if operator in ("&&", "||"):
        other = "||" if operator == "&&" else "&&"
        return [("logical", f"({left}) {other} ({right})"),
                ("logical", f"static_cast<bool>({left})"),
                ("logical", f"static_cast<bool>({right})")]
    if operator in RELATIONS:
        others = RELATIONS[operator] + (NUMBER_RELATIONS.get(operator, []) if numbers else [])
        return [("relation", f"{left} {other} {right}") for other in others]
    return [("arithmetic", f"{left} {other} {right}") for other in ARITHMETIC.get(operator, [])]


def integer(text):
    """The neighbours of an integer."""
    match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)([uUlLzZ]*)", text)
    if not match:
        return []
    digits, suffix = match.group(1).replace("'", ""), match.group(2)
    if re.fullmatch("0[0-7]+", digits):
        return [f"({text} + 1)"]
    value = int(digits, 16) if digits[:2] in ("0x", "0X") else int(digits)
    return [f"{other}{suffix}" for other in ([1] if value == 0 else [value + 1, value - 1])]


def string(text):
    """Another string: with one character more."""
    return text.replace('"', '"~', 1)
