#!/usr/bin/env python3
"""HTTPS servers of all sorts on this computer, until standard input ends. Prints the port of each: the good one, one
whose certificate has expired, one with another host's certificate, one that nobody vouches for, and one without TLS.
The argument is the folder for the certificates; ca.pem in it is the authority to trust."""
import http.server
import os
import ssl
import subprocess
import sys
import threading
import time
import urllib.parse

folder = sys.argv[1]
KEY = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes"]
plain_requests = 0


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], cwd=folder, check=True, capture_output=True)


def make_certificate(name, host, days, *authority):
    openssl("req", *KEY, "-keyout", name + ".key", "-out", name + ".csr", "-subj", "/CN=" + host)
    with open(os.path.join(folder, name + ".ext"), "w") as extensions:
        extensions.write("subjectAltName=DNS:" + host + "\n")
    openssl("x509", "-req", "-in", name + ".csr", "-days", str(days), "-extfile", name + ".ext",
            "-out", name + ".pem", *(authority or ("-signkey", name + ".key")))


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def log_message(self, *_):
        pass

    def answer(self, status, body=b"", **headers):
        self.send_response(status)
        headers.setdefault("Content_Length", str(len(body)))
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        global plain_requests
        if not isinstance(self.connection, ssl.SSLSocket):
            plain_requests += 1
        path, _, query = self.path.partition("?")
        path = path.lstrip("/")
        query = urllib.parse.unquote(query)
        self.close_connection = True
        try:
            getattr(self, "get_" + path, lambda _: self.answer(404))(query)
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            pass

    def get_file(self, query):
        self.answer(200, b"x" * int(query))

    def get_status(self, query):
        self.answer(int(query), b"<html>Sorry</html>")

    def get_to(self, query):
        self.answer(302, b"over there", Location=query, Set_Cookie="visitor=1")

    def get_hops(self, query):
        self.get_to("/hops?" + str(int(query) - 1) if int(query) > 1 else "/headers")

    def get_headers(self, _):
        self.answer(200, "".join(f"{name.lower()};" for name in self.headers.keys()).encode())

    def get_plain(self, _):
        self.answer(200, str(plain_requests).encode())

    def get_packed(self, _):  # Though nobody asked for that.
        self.answer(200, b"packed", Content_Encoding="deflate")

    def get_endless(self, _):
        self.send_response(200)
        self.end_headers()
        while True:
            self.wfile.write(b"x" * 65536)

    def get_titles(self, _):
        self.send_response(200)
        for number in range(100_000):
            self.send_header(f"X-{number}", "y" * 100)
        self.end_headers()

    def get_cut(self, _):
        self.answer(200, b"half", Content_Length="8")

    def get_slow(self, query):
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        for _ in range(1000):
            self.wfile.write(b"x")
            time.sleep(float(query))


def serve(certificate):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    if certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*(os.path.join(folder, certificate + end) for end in (".pem", ".key")))
        server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    server.handle_error = lambda *_: None
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


openssl("req", "-x509", *KEY, "-keyout", "ca.key", "-out", "ca.pem", "-days", "2", "-subj", "/CN=Authority")
ours = ("-CA", "ca.pem", "-CAkey", "ca.key", "-CAcreateserial")
make_certificate("good", "localhost", 2, *ours)
make_certificate("expired", "localhost", -1, *ours)
make_certificate("elsewhere", "elsewhere.example", 2, *ours)
make_certificate("unknown", "localhost", 2)
print(*(serve(name) for name in ("good", "expired", "elsewhere", "unknown", None)), flush=True)
sys.stdin.read()
