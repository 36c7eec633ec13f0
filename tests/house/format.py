"""The tree is as clang-format leaves it.

    format.py ROOT CLANG_FORMAT
"""
import os
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import sources

# Golden samples of the description's compiler are as it emits them, and held by its own tests.
NOT_OURS = ("golden",)


def complaints(tool, root, paths):
    command = [tool, "--style=file", "--dry-run", "-Werror", "--ferror-limit=1", *map(str, paths)]
    return subprocess.run(command, cwd=root, capture_output=True, text=True).stderr


def main(root, tool):
    paths = [path for path in sources.files(root) if not set(NOT_OURS) & set(path.parts)]
    if not paths:
        sys.exit(f"no sources below {root}")
    slices = [paths[start::8] for start in range(8) if paths[start::8]]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        said = "".join(pool.map(lambda part: complaints(tool, Path(root), part), slices))
    print(said, end="")
    print(f"{len(paths)} files; mend with: {Path(tool).name} -i FILE")
    return bool(said)


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
