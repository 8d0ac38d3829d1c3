"""Which mutants there are."""

import concurrent.futures
import hashlib
import json
import os
import shlex

import mutation
from failure import Failure

# Options that only GCC knows, or that name what only the build has.
WITH_VALUE = {"-o", "-include", "-c", "-MF", "-MT", "-MQ"}
DROPPED = ("-Winvalid-pch", "-fno-semantic-interposition", "-ffile-prefix-map", "-M")


def source_names(project, area, names):
    endings = (".cpp", ".h") if area.headers else (".cpp",)
    return sorted(name for name in names
                  if name.endswith(endings)
                  and any(name.startswith(folder + "/") for folder in area.folders))


def read(project, names):
    result = {}
    for name in names:
        with open(os.path.join(project, name), "rb") as file:
            result[name] = file.read()
    return result


def arguments_of(build_folder):
    """The compiler's arguments for each source."""
    with open(os.path.join(build_folder, "compile_commands.json")) as file:
        entries = json.load(file)
    return {entry["file"]: clean(shlex.split(entry["command"])[1:], entry["file"])
            for entry in entries}


def clean(words, path):
    result = []
    skip = False
    for word in words:
        if skip:
            skip = False
        elif word in WITH_VALUE:
            # The file that -c is followed by is given separately.
            skip = word != "-c"
        elif word != path and not word.startswith(DROPPED):
            result.append(word)
    return result + ["-Wno-everything"]


def find_one(task):
    """All mutations of one file, from the cache if it has not changed."""
    path, name, arguments, unsaved, cache = task
    # Only here, so that the rest of the tool works without libclang.
    import places
    found = places.mutations_of(path, name, arguments, unsaved)
    with open(cache, "w") as file:
        json.dump([vars(item) for item in found], file)


def tool_version():
    folder = os.path.dirname(os.path.abspath(__file__))
    digest = hashlib.sha256()
    for name in ("places.py", "operators.py", "source_text.py", "mutation.py"):
        with open(os.path.join(folder, name), "rb") as file:
            digest.update(file.read())
    return digest.digest()


def find(scratch, area, sources):
    """All mutations of an area, in the order of its files."""
    commands = arguments_of(scratch.build_folder)
    unsaved = {scratch.path(name): data.decode() for name, data in sources.items()}
    caches = {}
    tasks = []
    folder = os.path.join(scratch.folder, "places")
    os.makedirs(folder, exist_ok=True)
    for name, data in sources.items():
        digest = hashlib.sha256(tool_version() + name.encode() + data).hexdigest()
        caches[name] = os.path.join(folder, digest + ".json")
        if os.path.exists(caches[name]):
            continue
        arguments = commands.get(scratch.path(name)) or beside(commands, scratch.path(name))
        if arguments is None:
            raise Failure(f"{name} is compiled by nothing")
        tasks.append((scratch.path(name), name, arguments, unsaved, caches[name]))
    with concurrent.futures.ProcessPoolExecutor(scratch.jobs) as pool:
        for done, _ in enumerate(pool.map(find_one, tasks), 1):
            scratch.progress(f"reading sources: {done} of {len(tasks)}", passing=True)
    found = []
    for name in sources:
        with open(caches[name]) as file:
            found += [mutation.Mutation(**fields) for fields in json.load(file)]
    mutation.count_occurrences(found)
    return found


def beside(commands, path):
    """For a header: the arguments of a source in the same folder."""
    folder = os.path.dirname(path)
    return next((commands[other] for other in sorted(commands)
                 if os.path.dirname(other) == folder), None)


def sample(found, count, seed=""):
    """A part of the mutants that stays the same when others come and go."""
    if not count or count >= len(found):
        return found
    order = sorted(found, key=lambda item: hashlib.sha256((seed + item.key()).encode()).digest())
    taken = {id(item) for item in order[:count]}
    return [item for item in found if id(item) in taken]


def number(mutations):
    for place, item in enumerate(mutations, 1):
        item.number = place
    return mutations
