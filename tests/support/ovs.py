"""Where the OVSDB server's programs and its hardware_vtep schema are."""
import functools
import json
import os
import subprocess
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]


@functools.cache
def prefix():
    """The directory below which usr/sbin/ovsdb-server and its companions are; unpacked when there is none."""
    return Path(subprocess.run([TOP / "tools" / "ovs.sh"], check=True, stdout=subprocess.PIPE, text=True).stdout.strip())


def program(name):
    for folder in ("usr/sbin", "usr/bin"):
        path = prefix() / folder / name
        if os.access(path, os.X_OK):
            return path
    raise FileNotFoundError(f"{name} below {prefix()}")


def packaged_schema():
    """The schema as the distribution ships it, parsed: a fresh object for each caller."""
    with open(prefix() / "usr/share/openvswitch/vtep.ovsschema", encoding="utf-8") as file:
        return json.load(file)
