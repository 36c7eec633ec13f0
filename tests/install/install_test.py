"""What `cmake --install` puts down is what a stranger needs, and nothing else.

    install_test.py            checks
    install_test.py --write    writes the golden list of installed files anew
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
BUILD = Path(os.environ["VGW_BUILD"])
CXX = os.environ["VGW_CXX"]
CMAKE = os.environ["VGW_CMAKE"]
PKG_CONFIG = os.environ["VGW_PKG_CONFIG"]
GOLDEN = HERE / "installed_files.txt"
LIBRARIES = ("libqor.so.0", "libKelp.so.0", "libVgwStatemart.so.0")

# A symbol that a library may export: of its own namespaces, or the standard library's templates over their types.
OURS = re.compile(r"\b(Qor|Kelp|Vxlan|Vgw)::")
WEAK = "WVuV"


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}\n{done.stdout}{done.stderr}")
    return done.stdout


def stage(prefix):
    run(CMAKE, "--install", BUILD, "--prefix", prefix)


def library_dir(prefix):
    return next(Path(prefix).rglob("libqor.so.0")).parent


def names(prefix):
    """Installed files by name; the library directory, which differs by distribution, is called lib."""
    libraries = str(library_dir(prefix).relative_to(prefix))
    found = (str(path.relative_to(prefix)) for path in Path(prefix).rglob("*") if not path.is_dir())
    return sorted(re.sub(rf"^{re.escape(libraries)}/", "lib/", name) for name in found)


def exported(library):
    """(kind, demangled name) of each dynamic symbol that the library defines."""
    lines = run("nm", "--dynamic", "--defined-only", "--demangle", library).splitlines()
    return [line.split(maxsplit=2)[1:] for line in lines]


class InstallTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls._directory = tempfile.TemporaryDirectory(prefix="vgw-install-")
        cls.prefix = Path(cls._directory.name) / "prefix"
        stage(cls.prefix)

    @classmethod
    def tearDownClass(cls):
        cls._directory.cleanup()

    def build_dir(self):
        directory = tempfile.TemporaryDirectory(prefix="vgw-consumer-")
        self.addCleanup(directory.cleanup)
        return Path(directory.name)

    def test_the_installed_files_are_those_of_the_golden_list(self):
        self.assertEqual(names(self.prefix), GOLDEN.read_text().split())

    def build(self, source, prefix):
        """Builds a project of its own against the package below the prefix; where it was built."""
        build = self.build_dir()
        settings = (f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_COMPILER={CXX}")
        run(CMAKE, "-S", source, "-B", build, "-G", "Ninja", *settings)
        run(CMAKE, "--build", build)
        return build

    def test_a_consumer_builds_by_cmake_and_runs(self):
        build = self.build(HERE / "consumer", self.prefix)
        self.assertEqual(run(build / "consumer"), "tunnelKey 5001\n")

    def test_a_model_of_ones_own_builds_and_runs(self):
        source = HERE.parents[1] / "examples/own_model"
        build = self.build(source, self.prefix)
        self.assertEqual(run(build / "example_own_model"), (source / "expected_output.txt").read_text())

    def test_a_consumer_builds_by_pkg_config_and_runs(self):
        libraries = library_dir(self.prefix)
        environment = dict(os.environ, PKG_CONFIG_PATH=str(libraries / "pkgconfig"))
        flags = run(PKG_CONFIG, "--cflags", "--libs", "vgw-statemart", env=environment).split()
        program = self.build_dir() / "consumer"
        run(CXX, "-std=c++20", HERE / "consumer/main.cc", "-o", program, *flags, f"-Wl,-rpath,{libraries}")
        self.assertEqual(run(program), "tunnelKey 5001\n")

    def test_the_moved_package_still_works(self):
        moved = self.build_dir() / "elsewhere"
        shutil.copytree(self.prefix, moved, symlinks=True)
        build = self.build(HERE / "consumer", moved)
        needed = run("ldd", build / "consumer")
        for library in LIBRARIES:
            self.assertIn(f"{library} => {moved}", needed)

    def test_the_libraries_need_nothing_but_the_standard_library(self):
        for library in LIBRARIES:
            dynamic = run("readelf", "--dynamic", library_dir(self.prefix) / library)
            needed = set(re.findall(r"\(NEEDED\).*\[(.*?)\]", dynamic)) - set(LIBRARIES)
            strangers = {name for name in needed if not re.match(r"(libstdc\+\+|libc|libm|libgcc_s|ld-linux.*)\.so", name)}
            self.assertEqual(strangers, set(), library)

    def test_every_exported_symbol_is_of_our_namespaces(self):
        for library in LIBRARIES:
            symbols = exported(library_dir(self.prefix) / library)
            # Templates of the standard library that were instantiated here are weak: they are nobody's own.
            strangers = [name for kind, name in symbols if not OURS.search(name) and kind not in WEAK]
            self.assertEqual(strangers, [], library)
            self.assertTrue(symbols, library)


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        with tempfile.TemporaryDirectory() as scratch:
            stage(scratch)
            GOLDEN.write_text("\n".join(names(scratch)) + "\n")
    else:
        unittest.main(verbosity=2)
