"""Results as text."""

import json
import os

from areas import AREAS
from mutation import Mutation


def groups(data, equivalents):
    """The mutants by what became of them; those that are equivalent are in no other group."""
    result = {}
    outcomes = {item["key"]: item for item in data["results"]}
    for fields in data["mutants"]:
        mutation = Mutation(**fields)
        outcome = outcomes.get(mutation.key(), {}).get("outcome", "not tried")
        reason = equivalents.reason(mutation)
        if reason and outcome in ("survived", "not covered"):
            outcome = "equivalent"
        elif reason:
            # Whoever said so was wrong.
            result.setdefault("equivalent but caught", []).append(mutation)
        result.setdefault(outcome, []).append(mutation)
    return result


def figures(data, equivalents):
    found = groups(data, equivalents)
    count = {name: len(items) for name, items in found.items()}
    caught = sum(count.get(name, 0) for name in ("caught", "crashed", "hung", "memcheck"))
    total = len(data["mutants"])
    observable = total - count.get("equivalent", 0)
    rate = 100.0 * caught / observable if observable else 0.0
    return {"total": total, "caught": caught, "observable": observable, "rate": rate,
            "count": count, "groups": found}


def summary(name, data, equivalents):
    values = figures(data, equivalents)
    lines = [f"{name}: {values['caught']} of {values['observable']} mutants caught "
             f"({values['rate']:.1f} %); "
             f"{values['count'].get('equivalent', 0)} more are equivalent"]
    for outcome in ("survived", "not covered", "equivalent but caught"):
        for item in values["groups"].get(outcome, []):
            lines.append(f"  {outcome}: {item.number} {item.file}:{item.line} {item.function}: "
                         f"{item.kind}: {item.change()}"
                         + (f" (occurrence {item.occurrence})" if item.occurrence else ""))
    return "\n".join(lines)


def cell(text):
    return "`" + text.replace("|", "\\|").replace("`", "'") + "`"


def table(items, extra=None):
    lines = ["| file | function | kind | change |" + (" why nothing differs |" if extra else ""),
             "|---|---|---|---|" + ("---|" if extra else "")]
    for item in items:
        row = f"| {item.file}:{item.line} | {cell(item.function)} | {item.kind} | " \
              f"{cell(item.change())} |"
        lines.append(row + (f" {extra(item)} |" if extra else ""))
    return lines


def section(name, data, equivalents):
    values = figures(data, equivalents)
    count = values["count"]
    lines = [f"## {name}", "",
             f"{values['total']} mutants, {data['tests']} tests. Their processes took "
             f"{sum(item['seconds'] for item in data['results']) / 60:.0f} min together; the last "
             f"build, of what had changed, {data['built'] / 60:.0f} min.", "",
             "| outcome | mutants |", "|---|---|"]
    for outcome in ("caught", "crashed", "hung", "memcheck", "survived", "not covered",
                    "equivalent"):
        if count.get(outcome):
            lines.append(f"| {outcome} | {count[outcome]} |")
    lines += ["", f"Caught: **{values['caught']} of {values['observable']}** that can be observed, "
              f"{values['rate']:.1f} %. {data['dropped']} more did not compile.", ""]
    for outcome in ("survived", "not covered"):
        if count.get(outcome):
            lines += [f"### {name}: {outcome}", ""] + table(values["groups"][outcome]) + [""]
    if count.get("equivalent"):
        lines += [f"### {name}: equivalent", ""]
        lines += table(values["groups"]["equivalent"], equivalents.reason) + [""]
    return lines


def write(folder, scratch, equivalents):
    lines = ["# Result of the mutation tests", "",
             "Written by `mutate.py --report`; [README.md](README.md) says how to read it.", ""]
    for name in AREAS:
        path = os.path.join(scratch, name, "results.json")
        if os.path.exists(path):
            with open(path) as file:
                lines += section(name, json.load(file), equivalents)
    with open(os.path.join(folder, "RESULT.md"), "w") as file:
        file.write("\n".join(lines).rstrip() + "\n")
