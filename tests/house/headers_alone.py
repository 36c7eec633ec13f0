"""Each header compiles alone.

    headers_alone.py ROOT BUILD COMPILER

A header that a source beside it includes first is compiled alone by the build itself; all others are compiled here, with
the flags of a source near them. But for the standard library's headers that are compiled ahead for every source: who uses
what one of them declares is looked at here to include it. VGW_EVERY_HEADER=1 compiles all of them here without any that
is compiled ahead, for some minutes.
"""
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import sources

FOLDERS = ("qor", "kelp", "vgw", "ovsdb", "manual", "tcp", "vgwd", "vgwctl", "modelc")
TAKES_A_VALUE = ("-I", "-isystem", "-D")

# What is compiled ahead (cmake/ObjectLibrary.cmake), and the names by which it is used.
AHEAD = {
    "algorithm": r"sort|stable_sort|find|find_if|any_of|all_of|none_of|min|max|clamp|copy|copy_n|fill|fill_n|transform"
    r"|lower_bound|upper_bound|equal|count_if|reverse|replace|remove_if|ranges::\w+",
    "array": "array",
    "atomic": r"atomic|atomic_\w+|memory_order\w*",
    "functional": "function|hash|less|greater|invoke|reference_wrapper|ref|cref",
    "map": "map|multimap",
    "memory": r"unique_ptr|shared_ptr|weak_ptr|make_unique\w*|make_shared|enable_shared_from_this",
    "optional": "optional|nullopt",
    "string": "string|to_string|stoi|stoull",
    "string_view": "string_view",
    "vector": "vector",
}
USES = {header: re.compile(rf"\bstd::(?:{names})\b") for header, names in AHEAD.items()}
BRINGS = {"string": ["string_view"], "sstream": ["string"], "iostream": ["string"], "stdexcept": ["string"]}
EVERY = os.environ.get("VGW_EVERY_HEADER") == "1"


def proven_by_the_build(root, header):
    source = Path(root) / header.with_suffix(".cc")
    return source.exists() and sources.includes(source.read_text())[:1] == [str(header)]


def flags_by_folder(build, roots):
    """For each folder of sources, the search paths, definitions and language level of one of them."""
    flags = {}
    for entry in json.loads((Path(build) / "compile_commands.json").read_text()):
        for root in roots:
            if Path(entry["file"]).is_relative_to(root):
                folder = Path(entry["file"]).relative_to(root).parent
                flags.setdefault(str(folder), relevant(shlex.split(entry["command"])))
    return flags


def relevant(words):
    kept, words = [], iter(words)
    for word in words:
        if word in TAKES_A_VALUE or word == "-include" and not EVERY:
            kept += [word, next(words)]
        elif word == "-include":
            next(words)
        elif word.startswith(("-I", "-isystem", "-D", "-std", "-W", "-f", "-O")):
            kept.append(word)
    return kept


def flags_for(header, by_folder):
    """Of the nearest folder at or above the header's that has a source; else of one below it; else of any."""
    for folder in header.parents:
        if str(folder) in by_folder:
            return by_folder[str(folder)]
    below = sorted(by_folder, key=lambda folder: (folder.split("/")[0] != header.parts[0], folder))
    return by_folder[below[0]]


class Reach:
    """What a header includes, itself or through others of the tree."""

    def __init__(self, roots):
        self.roots = roots
        self.known = {}

    def of(self, name):
        if name not in self.known:
            self.known[name] = {name}
            path = next((root / name for root in self.roots if (root / name).is_file()), None)
            more = sources.includes(path.read_text()) if path else BRINGS.get(name, [])
            self.known[name] = {name}.union(*map(self.of, more))
        return self.known[name]

    def lacks(self, base, path):
        text = re.sub("//.*", "", (base / path).read_text())
        used = {header: found[0] for header, uses in USES.items() if (found := uses.search(text))}
        return [f"{path} uses {used[header]} without <{header}>" for header in used.keys() - self.of(str(path))]


def compile_alone(compiler, header, flags):
    """What the compiler says; twice included, so that a guard that does not guard shows."""
    text = f"#include <{header}>\n#include <{header}>\n"
    command = [compiler, *flags, "-fsyntax-only", "-x", "c++", "-"]
    done = subprocess.run(command, input=text, capture_output=True, text=True)
    return "" if done.returncode == 0 else f"{header} does not compile alone:\n{done.stderr[:2000]}"


def main(root, build, compiler):
    root, generated = Path(root).resolve(), Path(build).resolve() / "generated"
    roots = (root, generated)
    headers = [(base, path) for base in roots for path in sources.files(base, FOLDERS, (".h",))]
    by_folder = flags_by_folder(build, (generated, root))
    alone = [path for base, path in headers if EVERY or not proven_by_the_build(base, path)]
    if not headers:
        sys.exit(f"no headers below {root}")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        said = list(pool.map(lambda path: compile_alone(compiler, path, flags_for(path, by_folder)), alone))
    reach = Reach(roots)
    complaints = [text for text in said if text] + [text for header in headers for text in reach.lacks(*header)]
    print(*complaints, sep="\n")
    print(f"{len(headers)} headers, {len(alone)} compiled here, {len(complaints)} complaints")
    return bool(complaints)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
