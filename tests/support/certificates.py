"""Throw-away certificates, made by the openssl program."""
import ssl
import subprocess
import warnings
from pathlib import Path


class Authority:
    """One that signs; its files are in a directory of its own."""

    def __init__(self, directory, name="authority"):
        self.directory = Path(directory)
        self.directory.mkdir(parents=True, exist_ok=True)
        self.certificate = self.directory / f"{name}.pem"
        self.key = self.directory / f"{name}.key"
        _openssl("req", "-x509", *_NEW_KEY, "-keyout", self.key, "-out", self.certificate, "-days", "2", "-subj", f"/CN={name}")

    def issue(self, common_name, file_name=None, subject=None):
        """Key and certificate files for that common name."""
        stem = self.directory / (file_name or common_name)
        key, request, certificate = (Path(f"{stem}.{end}") for end in ("key", "req", "pem"))
        _openssl("req", *_NEW_KEY, "-keyout", key, "-out", request, "-subj", subject or f"/CN={common_name}")
        _openssl("x509", "-req", "-in", request, "-CA", self.certificate, "-CAkey", self.key, "-days", "2", "-out", certificate)
        return key, certificate

    def client_context(self, files=None, newest=ssl.TLSVersion.TLSv1_3):
        """How a client connects that trusts this authority, with its own key and certificate if given."""
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_CLIENT)
        context.check_hostname = False
        if newest < ssl.TLSVersion.TLSv1_2:
            # What the client's own library would not do by itself.
            context.set_ciphers("DEFAULT@SECLEVEL=0")
            with warnings.catch_warnings():
                warnings.simplefilter("ignore", DeprecationWarning)
                context.minimum_version = newest
                context.maximum_version = newest
        else:
            context.maximum_version = newest
        context.load_verify_locations(self.certificate)
        if files:
            context.load_cert_chain(files[1], files[0])
        return context


_NEW_KEY = ("-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-sha256")


def _openssl(*words):
    subprocess.run(["openssl", *map(str, words)], check=True, capture_output=True, timeout=60)
