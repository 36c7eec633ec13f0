#!/usr/bin/env python3
"""A build without the tests needs nothing of what only tests need, and has none of their targets: what ./run begins with on a
machine that has the build's packages alone. What ./test adds to the configuration brings them into that build.

  without_tests.py TREE CMAKE COMPILER"""
import re
import subprocess
import sys
import tempfile
from pathlib import Path


def configure(cmake, tree, folder, *arguments):
    done = subprocess.run(
        [cmake, "-S", tree, "-B", folder, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if done.returncode != 0:
        sys.exit(done.stdout)


def targets(cmake, folder):
    told = subprocess.run([cmake, "--build", folder, "--target", "help"], stdout=subprocess.PIPE, text=True, check=True)
    return [line.split(":")[0] for line in told.stdout.splitlines()]


def need(names, area, is_wanted):
    found = [name for name in names if name.startswith(area)]
    if bool(found) != is_wanted:
        sys.exit(f"expected {'some' if is_wanted else 'no'} targets of {area}: {' '.join(found)}")


def main(tree, cmake, compiler):
    of_test = re.search(r'cmake --preset "\$1"(.*?) >', (Path(tree) / "test").read_text())
    if of_test is None:
        sys.exit("./test configures nothing by its preset")
    with tempfile.TemporaryDirectory() as folder:
        configure(cmake, tree, folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DVGW_TESTS=OFF", "-DVGW_PCH=ON",
                  "-DVGW_UNITY=ON", f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON")
        need(targets(cmake, folder), "vgwd/", True)
        need(targets(cmake, folder), "tests/", False)
        configure(cmake, tree, folder, *of_test.group(1).split(), "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=OFF")
        need(targets(cmake, folder), "tests/", True)


if __name__ == "__main__":
    main(*sys.argv[1:])
