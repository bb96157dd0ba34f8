"""A web server on 127.0.0.1 that plays the planted sites, with and without TLS.

The browsers reach it as their proxy, so addresses are plain and no request of a browser can leave the
machine. Certificates are made anew for each server and live as long as it does.
"""

from __future__ import annotations

import base64
import datetime
import hashlib
import ssl
import struct
import sys
import tempfile
import threading
import zlib
from collections.abc import Callable
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from pathlib import Path
from urllib.parse import urlsplit

from cryptography import x509
from cryptography.hazmat.primitives import hashes, serialization
from cryptography.hazmat.primitives.asymmetric import rsa

from planted import BY_HOST, FRAME, SITES, Site

YEAR = 31_536_000


# --- Certificates -------------------------------------------------------------------------------

def new_key() -> rsa.RSAPrivateKey:
    return rsa.generate_private_key(public_exponent=65537, key_size=2048)


def signed(name: x509.Name, issuer: x509.Name, key: rsa.RSAPrivateKey, signer: rsa.RSAPrivateKey,
           extensions: list) -> bytes:
    now = datetime.datetime.utcnow()
    builder = x509.CertificateBuilder(
        issuer, name, key.public_key(), x509.random_serial_number(),
        now - datetime.timedelta(days=1), now + datetime.timedelta(days=300))
    for extension in extensions:
        builder = builder.add_extension(extension, critical=False)
    return builder.sign(signer, hashes.SHA256()).public_bytes(serialization.Encoding.PEM)


def make_certificates(folder: Path) -> str:
    """Writes ca.pem, leaf.key and a certificate for each site, which browsers keep beside its responses;
    the hash of the key that Chromium is told to trust."""
    ca_key, key = new_key(), new_key()
    ca_name, name = (x509.Name([x509.NameAttribute(x509.oid.NameOID.COMMON_NAME, text)])
                     for text in (f"browsersweep {x509.random_serial_number()}", "planted site"))
    ca = signed(ca_name, ca_name, ca_key, ca_key, [x509.BasicConstraints(ca=True, path_length=None)])
    for site in SITES:
        leaf = signed(name, ca_name, key, ca_key, [
            x509.SubjectAlternativeName([x509.DNSName(site.registrable),
                                         x509.DNSName(f"*.{site.registrable}")]),
            x509.ExtendedKeyUsage([x509.oid.ExtendedKeyUsageOID.SERVER_AUTH]),
            x509.BasicConstraints(ca=False, path_length=None)])
        (folder / f"{site.host}.pem").write_bytes(leaf + ca)
    (folder / "ca.pem").write_bytes(ca)
    (folder / "leaf.key").write_bytes(key.private_bytes(
        serialization.Encoding.PEM, serialization.PrivateFormat.TraditionalOpenSSL,
        serialization.NoEncryption()))
    public = key.public_key().public_bytes(serialization.Encoding.DER,
                                           serialization.PublicFormat.SubjectPublicKeyInfo)
    return base64.b64encode(hashlib.sha256(public).digest()).decode()


def tls_of(folder: Path, site: Site) -> ssl.SSLContext:
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(folder / f"{site.host}.pem", folder / "leaf.key")
    return context


# --- What the sites answer ----------------------------------------------------------------------

PAGE = """<!doctype html><html><head><meta charset=utf-8><title>qztitl{w} {path}</title>
<link rel=icon href="/qzicou{w}.png"><link rel=stylesheet href="/qzreso{w}.css">
<script src="/qzjscr{w}.js"></script></head>
<body><h1>qzbody{w}</h1><img src="/qzimgu{w}.png">
<form action="/qzdone{w}" method=get><input id=text name="qzfldn{w}" type=text>
<input id=email name=email type=text autocomplete=email><input id=send type=submit value=Send></form>
<a id=dl href="/download/qzdown{w}.bin">get</a> <a id=next href="/qzpath{w}/next">next</a>
<a id=bounce href="{frame}/bounce?to={host}">bounce</a>{embedded}</body></html>"""

EMBEDDED = """<!doctype html><title>embedded</title><script>
document.cookie = 'qzpckn{w}=qzpckv{w}; Secure; SameSite=None; Partitioned; Max-Age=9999999; Path=/';
localStorage.setItem('qzplsk{w}', 'qzplsv{w}');
const request = indexedDB.open('qzpidb{w}', 1);
request.onupgradeneeded = () => request.result.createObjectStore('s');
request.onsuccess = () =>
    request.result.transaction('s', 'readwrite').objectStore('s').put('qzpidv{w}', 'k');
</script>"""

WORKER = """// qzswsc{w}
self.addEventListener('install', event => self.skipWaiting());
self.addEventListener('activate', event => event.waitUntil(clients.claim()));
self.addEventListener('fetch', event => {});
"""


def icon_png(word: str) -> bytes:
    colour = zlib.crc32(word.encode()).to_bytes(4, "big")[:3]

    def chunk(kind: bytes, data: bytes) -> bytes:
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", 16, 16, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"tEXt", b"Comment\0qzicon" + word.encode())
            + chunk(b"IDAT", zlib.compress((b"\0" + colour * 16) * 16)) + chunk(b"IEND", b""))


def filled(text: str, site: Site, **more: str) -> bytes:
    values = {"w": site.word, "host": site.host, "frame": FRAME.origin, **more}
    for name, value in values.items():
        text = text.replace("{" + name + "}", value)
    return text.encode()


def lasting(site: Site) -> list[tuple[str, str]]:
    return [("Cache-Control", "public, max-age=864000"), ("ETag", f'"{site.marker("etag")}"')]


def image(site: Site, _path: str) -> tuple:
    return "image/png", icon_png(site.word), lasting(site)


def script(site: Site, path: str) -> tuple:
    body = f"// {site.marker('jsbo')}\nfunction f{len(path)}() {{ return 1 }}\n" * 100
    return "text/javascript", body.encode(), lasting(site)


def style(site: Site, _path: str) -> tuple:
    return "text/css", f"/* {site.marker('csbo')} */ body {{ margin: 1em }}".encode(), lasting(site)


def worker(site: Site, _path: str) -> tuple:
    return "text/javascript", filled(WORKER, site), [("Cache-Control", "max-age=0")]


def cached(site: Site, _path: str) -> tuple:
    return "text/plain", f"{site.marker('capb')} ".encode() * 50, [("Cache-Control", "no-store")]


def dictionary(site: Site, _path: str) -> tuple:
    use = ("Use-As-Dictionary", f'match="/dict/*", id="{site.marker("diid")}"')
    return "text/plain", f"{site.marker('dict')} ".encode() * 200, [*lasting(site), use]


def large(site: Site, path: str) -> tuple:
    body = icon_png(site.word) + zlib.compress(path.encode()) * 400 + site.marker("bigb").encode()
    return "image/png", body, lasting(site)


def download(site: Site, _path: str) -> tuple:
    return ("application/octet-stream", f"{site.marker('dcon')}\n".encode() * 300,
            [("Content-Disposition", f'attachment; filename="{site.marker("down")}.bin"')])


def embedded(site: Site, _path: str) -> tuple:
    cookie = f"qz3ckn{site.word}=qz3ckv{site.word}; Secure; SameSite=None; Max-Age={YEAR}; Path=/"
    return "text/html", filled(EMBEDDED, site), [("Set-Cookie", cookie)]


def page(site: Site, path: str) -> tuple:
    frame = f'<iframe src="{FRAME.origin}/embedded"></iframe>' if path.endswith("/frame") else ""
    return ("text/html; charset=utf-8", filled(PAGE, site, path=path, embedded=frame),
            page_headers(site))


def page_headers(site: Site) -> list[tuple[str, str]]:
    w = site.word
    headers = [("Set-Cookie", f"qzsckn{w}=qzsckv{w}; Path=/"),
               ("Set-Cookie", f"qzcknm{w}=qzckvl{w}; Path=/; Max-Age={YEAR}; HttpOnly"),
               ("Set-Cookie", f"qzckdn{w}=qzckdv{w}; Path=/; Max-Age={YEAR}; Domain={site.registrable}"),
               ("Cache-Control", "private, max-age=3600")]
    if site.scheme == "http":
        return headers
    return headers + [
        ("Strict-Transport-Security", f"max-age={YEAR}; includeSubDomains"),
        ("Report-To", '{"group":"qzrepo%s","max_age":86400,"endpoints":[{"url":"%s/report"}]}'
         % (w, site.origin)),
        ("Reporting-Endpoints", f'qzrend{w}="{site.origin}/report"'),
        ("NEL", '{"report_to":"qzrepo%s","max_age":86400,"success_fraction":1}' % w),
        ("Alt-Svc", f'h2="alt.{site.registrable}:443"; ma=86400'),
        ("Accept-CH", "Sec-CH-UA-Model, Sec-CH-UA-Full-Version")]


# The first rule whose test holds answers; all others are pages.
ANSWERS: tuple[tuple[Callable[[str], bool], Callable[[Site, str], tuple]], ...] = (
    (lambda path: path.endswith(".png") or path == "/favicon.ico", image),
    (lambda path: path == "/sw.js", worker),
    (lambda path: path.endswith(".js"), script),
    (lambda path: path.endswith(".css"), style),
    (lambda path: path.startswith("/qzcapu"), cached),
    (lambda path: path.startswith("/dict/"), dictionary),
    (lambda path: path.startswith("/big/"), large),
    (lambda path: path.startswith("/download/"), download),
    (lambda path: path == "/embedded", embedded),
    (lambda path: True, page),
)


# --- The server ---------------------------------------------------------------------------------

class _Writer:
    """What a handler writes to once TLS has begun."""

    closed = False

    def __init__(self, connection: ssl.SSLSocket) -> None:
        self._connection = connection

    def write(self, data: bytes) -> int:
        self._connection.sendall(data)
        return len(data)

    def flush(self) -> None:
        pass

    def close(self) -> None:
        pass


class _Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    timeout = 60

    def log_message(self, *_):
        pass

    def do_CONNECT(self):
        tls = self.server.tls.get(self.path.split(":")[0])
        if tls is None:
            self._send(403, "text/plain", b"no\n")
            self.close_connection = True
            return
        self.send_response(200)
        self.end_headers()
        self.wfile.flush()
        try:
            connection = tls.wrap_socket(self.connection, server_side=True)
        except OSError:  # the browser has changed its mind
            self.close_connection = True
            return
        self.connection = self.request = connection
        self.rfile, self.wfile = connection.makefile("rb", -1), _Writer(connection)
        self.close_connection = False

    def do_POST(self):
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self.do_GET()

    def do_GET(self):
        target = urlsplit(self.path)
        site = BY_HOST.get(target.hostname or self.headers.get("Host", "").split(":")[0])
        if site is None:
            self._send(403, "text/plain", b"unknown\n")
        elif target.path == "/bounce":
            self._bounce(site, BY_HOST[target.query.split("=")[-1]])
        else:
            self.server.served.add((site.word, target.path))
            answer = next(work for rule, work in ANSWERS if rule(target.path))
            self._send(200, *answer(site, target.path))

    do_HEAD = do_GET

    def _bounce(self, site: Site, to: Site):
        cookie = f"qzbckn{site.word}=qzbckv{site.word}; Max-Age={YEAR}; Path=/"
        self._send(302, "text/plain", b"", [
            ("Location", f"{to.origin}/qzpath{to.word}/bounced"), ("Set-Cookie", cookie)])

    def _send(self, status: int, kind: str, body: bytes, headers=()):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(body)
        self.wfile.flush()


class _Server(ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request, client_address):
        if not isinstance(sys.exc_info()[1], OSError):  # a browser may close its connection any time
            super().handle_error(request, client_address)


class PlantedWeb:
    """The server, on a port of its own; a context manager."""

    def __enter__(self):
        with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as name:
            folder = Path(name)
            self.spki = make_certificates(folder)
            self.authority = (folder / "ca.pem").read_text("ascii")
            tls = {site.host: tls_of(folder, site) for site in SITES}
        self._server = _Server(("127.0.0.1", 0), _Handler)
        self._server.tls, self._server.served = tls, set()
        self.port = self._server.server_address[1]
        threading.Thread(target=self._server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()

    def forget_served(self) -> None:
        self._server.served.clear()

    def has_served(self, site: Site, path: str) -> bool:
        return (site.word, path) in self._server.served
