"""The tree over TLS: who has a certificate of the authority reads, and who bears a writer's name writes."""
import signal
import ssl
import struct

import serve_case
from support import attrlog
from support.certificates import Authority


class TlsTest(serve_case.ServeCase):
    def setUp(self):
        super().setUp()
        self.db = self.server()
        self.authority = Authority(self.directory / "pki")
        self.key, self.certificate = self.authority.issue("agent")
        self.agent_ = self.agent(
            self.db, "--listen", "pssl:0:127.0.0.1", "-p", str(self.key), "-c", str(self.certificate),
            "-C", str(self.authority.certificate), "--write-cn", "controller", "--listen", f"unix:{self.directory}/agent/vgwd.sock",
        )
        self.agent_.await_said("listening on ssl:127.0.0.1:")
        self.port = int(self.agent_.said().split("listening on ssl:127.0.0.1:")[1].split()[0])

    def peer(self, files, **options):
        peer = attrlog.Peer(self.port, tls=self.authority.client_context(files, **options))
        self.addCleanup(peer.close)
        return peer

    def sessions(self):
        client = self.client(self.agent_, "/vgw")
        client.await_told("synced")
        names = client.ask("list", "/vgw/sessions", "entry").split()
        return {client.ask("get", "/vgw/sessions/" + name.strip("'"), "identity") for name in names}

    def port_of_manager(self):
        client = self.client(self.agent_, "/vgw/cliConfig")
        client.await_told("synced")
        return client.ask("get", "/vgw/cliConfig", "managerPort")

    def test_a_certificate_of_the_authority_reads_and_is_told_by_its_name(self):
        peer = self.peer(self.authority.issue("leaf-1"))
        self.assertEqual(peer.socket.version(), "TLSv1.3")
        peer.mounted(1, "/vgw/status")
        with self.assertRaisesRegex(PermissionError, "may only be read"):
            peer.mounted(2, "/vgw/cliConfig", writable=True)
        client = self.client(self.agent_, "/vgw")
        client.await_that(lambda: "'cn leaf-1'" in self.sessions(), "its name is told")

    def test_a_writers_name_writes(self):
        peer = self.peer(self.authority.issue("controller"))
        entity = peer.mounted(1, "/vgw/cliConfig", writable=True)
        peer.send(attrlog.frame(attrlog.RECORD, entity, 262, struct.pack(">H", 7)))
        self.agent_.await_that(lambda: self.port_of_manager() == "7", "the port is written")

    def test_tls_1_2_is_spoken_and_1_1_is_not(self):
        files = self.authority.issue("leaf-1")
        peer = self.peer(files, newest=ssl.TLSVersion.TLSv1_2)
        self.assertEqual(peer.socket.version(), "TLSv1.2")
        peer.mounted(1, "/vgw/status")
        with self.assertRaisesRegex(ssl.SSLError, "alert protocol version"):
            self.peer(files, newest=ssl.TLSVersion.TLSv1_1)

    def assert_refused(self, files):
        """With TLS 1.3 a client hears of it when it reads."""
        with self.assertRaises((ssl.SSLError, OSError, TypeError)):
            self.peer(files).mounted(1, "/vgw/status")

    def test_who_has_no_certificate_or_one_of_someone_else_is_refused(self):
        self.assert_refused(None)
        self.assert_refused(Authority(self.directory / "other", "other").issue("controller"))

    def test_a_certificate_without_one_name_is_refused_with_the_reason(self):
        for n, subject in enumerate(("/O=nobody", "/CN=controller/CN=leaf")):
            peer = self.peer(self.authority.issue("", f"odd-{n}", subject))
            self.assertEqual(peer.error(), "the certificate has no common name")

    def test_certificates_are_read_again_on_sighup_for_new_connections(self):
        files = self.authority.issue("leaf-1")
        old = self.peer(files)
        old.mounted(1, "/vgw/status")
        before = old.socket.getpeercert(binary_form=True)
        self.authority.issue("agent")
        self.agent_._process.send_signal(signal.SIGHUP)
        self.agent_.await_said("certificates are read again")
        new = self.peer(files)
        new.mounted(1, "/vgw/status")
        self.assertNotEqual(new.socket.getpeercert(binary_form=True), before)
        old.mounted(2, "/vgw/config")

    def test_certificates_that_are_no_good_change_nothing(self):
        self.certificate.write_text("nothing")
        self.agent_._process.send_signal(signal.SIGHUP)
        self.agent_.await_said("certificates stay as they were: ", str(self.certificate))
        self.peer(self.authority.issue("leaf-1")).mounted(1, "/vgw/status")

    def test_who_begins_no_handshake_holds_nobody_up(self):
        silent = attrlog.Peer(self.port, greets=False)
        self.addCleanup(silent.close)
        rude = attrlog.Peer(self.port)
        self.addCleanup(rude.close)
        self.peer(self.authority.issue("leaf-1")).mounted(1, "/vgw/status")


if __name__ == "__main__":
    serve_case.main()
