"""Reads every #include of the tree against cmake/layers.txt.

    layers.py ROOT [GENERATED]

Complains of each include that crosses the layers, and of circles among the folders.
"""
import sys
from pathlib import Path

import sources

STANDARD = frozenset(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem forward_list fstream functional
    future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore
    set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view strstream
    syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray
    variant vector version""".split()
)
LAYERED = ("qor", "kelp", "vgw", "ovsdb", "manual", "tcp", "vgwd", "vgwctl", "modelc")


class Layers:
    """The parsed statement."""

    def __init__(self, text):
        self._direct, self._libraries = {}, {}
        for line in text.splitlines():
            line = line.split("#")[0].strip()
            if line:
                folder, rest = line.split(":")
                below, _, libraries = rest.partition("|")
                self._direct[folder.strip()] = below.split()
                self._libraries[folder.strip()] = set(libraries.split())

    def stated(self, path):
        """The header or folder whose line holds for this file or folder; None when there is none."""
        while path and path not in self._direct:
            path = path.rpartition("/")[0]
        return path or None

    def reachable(self, folder):
        """All folders that one may include, itself included."""
        seen, open_ = set(), [folder]
        while open_:
            name = open_.pop()
            if name not in seen:
                seen.add(name)
                open_ += self._direct.get(name, [])
        return seen

    def circle(self):
        """A folder that may include itself through others, or None."""
        for folder, below in self._direct.items():
            if any(folder in self.reachable(name) for name in below):
                return folder
        return None

    def unknown(self):
        """Folders that a line names but that have none of their own."""
        return sorted({name for below in self._direct.values() for name in below if name not in self._direct})

    def objection(self, source, included):
        """Why a source may not include this header; None when it may."""
        own = self.stated(source)
        if own is None:
            return "no line for its folder"
        if included in STANDARD:
            return None
        top = included.split("/")[0]
        if top not in LAYERED:
            return None if top in self._libraries[own] else f"{own} may not use the library of <{included}>"
        target = self.stated(included)
        if target is None:
            return f"no line for the folder of <{included}>"
        return None if target in self.reachable(own) else f"{own} may not include {target} (<{included}>)"


def check(layers, named_texts):
    """Complaints about (path, text) pairs, the paths relative to the root."""
    complaints = [f"cmake/layers.txt: no line for {name}" for name in layers.unknown()]
    circle = layers.circle()
    if circle:
        complaints.append(f"cmake/layers.txt: {circle} may include itself through others")
    for path, text in named_texts:
        for included in sources.includes(text):
            objection = layers.objection(str(path), included)
            if objection:
                complaints.append(f"{path}: {objection}")
    return complaints


def main(roots):
    layers = Layers((Path(roots[0]) / "cmake/layers.txt").read_text())
    texts = [(path, (Path(root) / path).read_text()) for root in roots for path in sources.files(root, LAYERED)]
    if not texts:
        sys.exit(f"no sources below {roots}")
    complaints = check(layers, texts)
    print(*complaints, sep="\n")
    print(f"{len(texts)} files, {len(complaints)} complaints")
    return bool(complaints)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
