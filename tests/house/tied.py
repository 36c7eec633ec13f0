"""What waits in an event loop is tied to the object that it works on (ovsdb/rpc/Tether.h), or owns it.

    tied.py SOURCE_DIR

A handler that holds "this" and is given to the loop as it is would be called after the object's end, if its
time had come before.
"""

import pathlib
import re
import sys

FOLDERS = ("ovsdb", "vgwd")
# A call that gives a handler to the loop, up to the handler's captures.
CALL = re.compile(r"(?:\basync_\w+|asio::(?:post|dispatch|defer))\(([^;{}\[\]]*)\[([^\]]*)\]")


def faults(path, text):
    for call in CALL.finditer(text):
        before, captures = call.groups()
        holds_this = re.search(r"(?:^|,)\s*(?:this|[&=])\s*(?:,|$)", captures)
        if holds_this and not before.rstrip().endswith(".tie("):
            line = text.count("\n", 0, call.start()) + 1
            yield f"{path}:{line}: the handler holds [{captures}] and is not tied"


def check_itself():
    """It finds the fault that it is for, and lets others pass."""
    assert list(faults("a.cc", "timer_.async_wait([this](E e) {});"))
    assert list(faults("a.cc", "s.async_wait(s.wait_read, [this, at = 1](E e) {});"))
    assert list(faults("a.cc", "asio::post(loop_, [&] {});"))
    assert not list(faults("a.cc", "timer_.async_wait(tether_.tie([this](E e) {}));"))
    assert not list(faults("a.cc", "timer_.async_wait([self = shared_from_this()](E e) {});"))


def main():
    check_itself()
    source = pathlib.Path(sys.argv[1])
    found, calls = [], 0
    for folder in FOLDERS:
        for path in sorted((source / folder).rglob("*.cc")):
            text = path.read_text()
            calls += len(CALL.findall(text))
            found += faults(path.relative_to(source), text)
    print("\n".join(found) or f"{calls} handlers are given to an event loop; all are tied or own what they work on")
    return 1 if found or not calls else 0


if __name__ == "__main__":
    sys.exit(main())
