#!/usr/bin/env python3
"""A build without the tests needs nothing of what only tests need, and has none of their targets: what ./run begins with on a
machine that has the build's packages alone.

  without_tests.py TREE CMAKE COMPILER"""
import subprocess
import sys
import tempfile


def main(tree, cmake, compiler):
    with tempfile.TemporaryDirectory() as folder:
        configured = subprocess.run(
            [cmake, "-S", tree, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DVGW_TESTS=OFF", "-DVGW_PCH=ON",
             "-DVGW_UNITY=ON", f"-DCMAKE_CXX_COMPILER={compiler}", "-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if configured.returncode != 0:
            sys.exit(configured.stdout)
        targets = subprocess.run([cmake, "--build", folder, "--target", "help"], stdout=subprocess.PIPE, text=True, check=True)
    names = [line.split(":")[0] for line in targets.stdout.splitlines()]
    if not any(name.startswith("vgwd/") for name in names):
        sys.exit("no target of vgwd's is there: " + " ".join(names[:20]))
    tests = [name for name in names if name.startswith("tests/")]
    if tests:
        sys.exit("targets of tests are there: " + " ".join(tests))


if __name__ == "__main__":
    main(*sys.argv[1:])
