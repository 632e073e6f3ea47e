#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""tools/sign on the DLL as it ships, with an authority, a signer and a timestamp service of the test's own."""

import contextlib
import http.server
import pathlib
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
DLL = ROOT / "build" / "windows-release" / "bin" / "ZRM_QXKT32x64.dll"
# The sum of the whole file and the place of the signature: what a signature changes in the headers.
HEADER_BYTES_CHANGED = 4 + 8

SETTINGS = """
[authority]
basicConstraints = critical, CA:TRUE
keyUsage = keyCertSign
[signer]
keyUsage = digitalSignature
extendedKeyUsage = codeSigning
[clock]
keyUsage = digitalSignature
extendedKeyUsage = critical, timeStamping
[tsa]
default_tsa = service
[service]
serial = {folder}/serial
default_policy = 1.2.3.4
digests = sha256
signer_digest = sha256
"""


def run(*command, check=True):
    return subprocess.run(command, check=check, stdin=subprocess.DEVNULL, capture_output=True)


class Certificates:
    def __init__(self, folder):
        self.folder = folder
        self.settings = folder / "settings"
        self.settings.write_text(SETTINGS.format(folder=folder))
        self.make("authority", "-x509", "-extensions", "authority")
        for name in ("signer", "clock"):
            self.make(name, "-CA", folder / "authority.pem", "-CAkey", folder / "authority.key", "-x509",
                      "-extensions", name)

    def make(self, name, *options):
        run("openssl", "req", "-new", "-newkey", "rsa:2048", "-noenc", "-subj", f"/CN={name}",
            "-days", "2", "-keyout", self.key(name), "-out", self.certificate(name), *options, "-config", self.settings)

    def certificate(self, name):
        return self.folder / f"{name}.pem"

    def key(self, name):
        return self.folder / f"{name}.key"


class Clock(http.server.BaseHTTPRequestHandler):
    """A timestamp service; openssl answers."""

    def do_POST(self):
        certificates = self.server.certificates
        query, reply = certificates.folder / "query", certificates.folder / "reply"
        query.write_bytes(self.rfile.read(int(self.headers["Content-Length"])))
        run("openssl", "ts", "-reply", "-config", certificates.settings, "-queryfile", query, "-out", reply,
            "-signer", certificates.certificate("clock"), "-inkey", certificates.key("clock"))
        self.send_response(200)
        self.send_header("Content-Type", "application/timestamp-reply")
        self.end_headers()
        self.wfile.write(reply.read_bytes())

    def log_message(self, *_):
        pass


@contextlib.contextmanager
def clock_url(certificates):
    with http.server.HTTPServer(("127.0.0.1", 0), Clock) as server:
        server.certificates = certificates
        thread = threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.05})
        thread.start()
        try:
            yield f"http://127.0.0.1:{server.server_port}/"
        finally:
            server.shutdown()
            thread.join()


class Signing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(scratch.cleanup)
        cls.certificates = Certificates(pathlib.Path(scratch.name))

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.file = pathlib.Path(scratch.name) / DLL.name
        shutil.copy2(DLL, self.file)

    def sign(self, *options):
        return run(ROOT / "tools" / "sign", "--certificate", self.certificates.certificate("signer"), "--key",
                   self.certificates.key("signer"), *options, self.file, check=False)

    def verified(self):
        authority = self.certificates.certificate("authority")
        return run("osslsigncode", "verify", "-CAfile", authority, "-TSA-CAfile", authority, "-in", self.file,
                   check=False)

    def test_a_signed_library_verifies(self):
        self.assertNotEqual(self.verified().returncode, 0)
        self.assertEqual(self.sign().returncode, 0)
        self.assertEqual(self.verified().returncode, 0, self.verified().stdout)

    def test_what_is_loaded_stays_as_it_was_built(self):
        self.sign()
        before, after = DLL.read_bytes(), self.file.read_bytes()
        different = sum(one != other for one, other in zip(before, after))
        self.assertGreater(len(after), len(before))
        self.assertLessEqual(different, HEADER_BYTES_CHANGED)
        self.assertEqual(self.file.stat().st_mode, DLL.stat().st_mode)

    def test_a_changed_library_does_not_verify(self):
        self.sign()
        content = bytearray(self.file.read_bytes())
        content[len(content) // 2] ^= 1
        self.file.write_bytes(content)
        self.assertNotEqual(self.verified().returncode, 0)

    def test_a_signature_that_does_not_verify_replaces_nothing(self):
        result = self.sign("--authority", self.certificates.certificate("clock"))
        self.assertNotEqual(result.returncode, 0)
        self.assertIn(b"osslsigncode verify failed", result.stderr)
        self.assertEqual(self.file.read_bytes(), DLL.read_bytes())
        self.assertEqual(list(self.file.parent.iterdir()), [self.file])

    def test_a_service_testifies_to_the_time(self):
        with clock_url(self.certificates) as url:
            result = self.sign("--timestamp", url, "--authority", self.certificates.certificate("authority"))
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(b"Timestamp Server Signature verification: ok", self.verified().stdout)


if __name__ == "__main__":
    sys.exit(unittest.main())
