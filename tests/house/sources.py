"""The C++ sources of the tree, and what they include."""
import re
from pathlib import Path

FOLDERS = ("qor", "kelp", "vgw", "ovsdb", "manual", "tcp", "vgwd", "vgwctl", "modelc", "tests", "bench", "fuzz", "examples")
_INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(<[^>]+>|"[^"]+")', re.MULTILINE)
_BLOCK_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)
_RAW_STRING = re.compile(r'R"(\w*)\(.*?\)\1"', re.DOTALL)


def files(root, folders=FOLDERS, endings=(".h", ".cc")):
    """Paths relative to the root, sorted."""
    root = Path(root)
    found = (path for folder in folders for path in (root / folder).rglob("*") if path.suffix in endings)
    return sorted(path.relative_to(root) for path in found)


def includes(text):
    """The names that a source includes, in order, without their brackets or quotes."""
    text = _RAW_STRING.sub('""', _BLOCK_COMMENT.sub("", text))
    return [name[1:-1] for name in _INCLUDE.findall(text)]
