#!/usr/bin/env python3
"""As tests/soak/tidy configures the tree, each source of the product is read by itself, with nothing compiled ahead, and so are
the generated ones.

  tidy_reads_all.py TREE CMAKE"""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import sources

FOLDERS = ("qor", "kelp", "vgw", "ovsdb", "manual", "vgwd", "vgwctl", "modelc")


def commands(cmake, tree, folder):
    done = subprocess.run(
        [cmake, "--preset", "tidy", "-B", folder], cwd=tree, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(done.stdout)
    return json.loads((Path(folder) / "compile_commands.json").read_text())


def main(tree, cmake):
    with tempfile.TemporaryDirectory() as folder:
        told = commands(cmake, tree, folder)
        read = {Path(command["file"]) for command in told}
        missing = [path for path in sources.files(tree, FOLDERS, (".cc",)) if Path(tree) / path not in read]
        if missing:
            sys.exit(f"not read by themselves: {' '.join(map(str, missing[:3]))}")
        product = [command for command in told if any(Path(tree) / part in Path(command["file"]).parents for part in FOLDERS)]
        ahead = [command["file"] for command in product if "pch" in command["command"]]
        if ahead:
            sys.exit(f"read with headers that were compiled ahead: {' '.join(ahead[:3])}")
        generated = [path for path in read if Path(folder) / "generated/vgw/tables" in path.parents]
        adapters = [path for path in read if Path(folder) / "generated/vgw/attrlog" in path.parents]
        if not generated or not adapters:
            sys.exit("no generated source is read by itself")


if __name__ == "__main__":
    main(*sys.argv[1:])
