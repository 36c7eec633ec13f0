"""Each header compiles alone.

    headers_alone.py ROOT BUILD COMPILER

A header that a source beside it includes first is compiled alone by the build itself; all others are compiled here, with
the flags of a source near them.
"""
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import sources

FOLDERS = ("qor", "kelp", "vgw", "ovsdb", "manual", "vgwd", "vgwctl", "modelc")
TAKES_A_VALUE = ("-I", "-isystem", "-D", "-include")


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
        if word in TAKES_A_VALUE:
            kept += [word, next(words)]
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
    alone = [path for base, path in headers if not proven_by_the_build(base, path)]
    if not headers:
        sys.exit(f"no headers below {root}")
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        said = list(pool.map(lambda path: compile_alone(compiler, path, flags_for(path, by_folder)), alone))
    complaints = [text for text in said if text]
    print(*complaints, sep="\n")
    print(f"{len(headers)} headers, {len(alone)} compiled here, {len(complaints)} complaints")
    return bool(complaints)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
