"""Sockets of the file system."""
import socket


def listens(path):
    """Whether somebody takes connections there. A socket is seen before it listens, and refuses who comes in between."""
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as probe:
        try:
            probe.connect(str(path))
        except (FileNotFoundError, ConnectionRefusedError):
            return False
    return True
