"""A small web site on 127.0.0.1 that plays several hosts at once.

The browsers reach it as their HTTP proxy, so pages keep plain addresses such as
http://news.example.test/page/3 (no port number in history, cookies or permissions) and no request
of the browser can leave the machine: hosts outside HOSTS and every CONNECT are refused.
"""

import struct
import sys
import threading
import time
import zlib
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import urlsplit

HOSTS = (
    "news.example.test",
    "shop.example.test",
    "www.bank.test",
    "ads.tracker.test",
    "mail.localhost",
    "xn--bcher-kva.test",
)
IMAGES_PER_PAGE = 2
IMAGE_BYTES = 24_000
ONE_YEAR = 31_536_000


def page_paths(count):
    """The pages to visit, spread over the hosts: a list of (host, path with query)."""
    pages = []
    for number in range(count):
        host = HOSTS[number % len(HOSTS)]
        query = "" if number % 3 else f"?q=caf%C3%A9+{number}&ref=100%25_o'clock"
        pages.append((host, f"/page/{number}{query}"))
    return pages


def icon_png(host):
    """A 16x16 PNG in a colour derived from the host name."""
    colour = zlib.crc32(host.encode()).to_bytes(4, "big")[:3]
    rows = (b"\0" + colour * 16) * 16

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", 16, 16, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def filler(seed, size):
    """Deterministic bytes that do not compress, so that the cache has something to hold."""
    state, out = zlib.crc32(seed.encode()) or 1, bytearray()
    while len(out) < size:
        state = (state * 6364136223846793005 + 1442695040888963407) & (2 ** 64 - 1)
        out += state.to_bytes(8, "big")
    return bytes(out[:size])


class _Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    timeout = 30

    def do_CONNECT(self):
        self._send(403, "text/plain", b"no https here\n")
        self.close_connection = True

    def do_POST(self):
        self.rfile.read(int(self.headers.get("Content-Length", 0)))
        self._answer()

    def do_GET(self):
        self._answer()

    def log_message(self, *_):
        pass

    def _answer(self):
        target = urlsplit(self.path)
        host = target.hostname or (self.headers.get("Host") or "").split(":")[0]
        if host not in HOSTS:
            self._send(403, "text/plain", b"unknown host\n")
            self.server.site.note_refused(host)
            return
        kind, body, headers = self._resource(host, target.path)
        self._send(200, kind, body, headers)
        self.server.site.note_served(host, target.path)

    def _resource(self, host, path):
        if path in ("/icon.png", "/favicon.ico"):
            return "image/png", icon_png(host), _cacheable()
        if path.startswith("/image/"):
            return "image/png", icon_png(host) + filler(host + path, IMAGE_BYTES), _cacheable()
        if path == "/app.js":
            return "text/javascript", b"// " + b"x" * 4000 + b"\n", _cacheable()
        if path.startswith("/download/"):
            name = path.rsplit("/", 1)[1]
            return ("application/octet-stream", filler(path, 5000),
                    [("Content-Disposition", f'attachment; filename="{name}"')])
        return "text/html; charset=utf-8", _html(host, path).encode(), _cookies(host)

    def _send(self, status, kind, body, headers=()):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body)))
        for name, value in headers:
            self.send_header(name, value)
        self.end_headers()
        self.wfile.write(body)


def _cacheable():
    return [("Cache-Control", "public, max-age=864000"), ("ETag", '"1"')]


def _cookies(host):
    return [
        ("Set-Cookie", f"session=s-{host}; Path=/"),
        ("Set-Cookie", f"visitor=v-{host}; Path=/; Max-Age={ONE_YEAR}; HttpOnly"),
        ("Set-Cookie", f"wide=w; Path=/; Max-Age={ONE_YEAR}; SameSite=Lax; "
                       f"Domain={'.'.join(host.split('.')[-2:])}"),
    ]


FORM = """<form action="/form/done" method="get" id="f">
<input id="name" name="name" type="text" autocomplete="name">
<input id="email" name="email" type="text" autocomplete="email">
<input id="nickname" name="nickname" type="text">
<input id="send" type="submit" value="Send"></form>"""

STORAGE = """<script>for (let i = 0; i < 20; i++)
localStorage.setItem('key' + i, location.host + ' ' + 'v'.repeat(200));</script>"""


def _html(host, path):
    extra = FORM if path == "/form" else STORAGE if path == "/storage" else "".join(
        f'<img src="/image/{n}.png" alt="">' for n in range(IMAGES_PER_PAGE))
    return (f"<!doctype html><html><head><meta charset='utf-8'><title>{host} {path} – été</title>"
            "<link rel='icon' href='/icon.png'><script src='/app.js'></script></head>"
            f"<body><h1>{host}</h1><a id='dl' href='/download/report.bin'>report</a>{extra}"
            "</body></html>")


class _Server(ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request, client_address):
        """A browser that ends drops its connections; that is no error of ours."""
        if not isinstance(sys.exc_info()[1], ConnectionError):
            super().handle_error(request, client_address)


class WebSite:
    """The running site; a context manager. `port` is the proxy port to give to the browsers."""

    def __init__(self):
        self._server = _Server(("127.0.0.1", 0), _Handler)
        self._server.site = self
        self._changed = threading.Condition()
        self._served = {}
        self.refused_hosts = set()
        self.port = self._server.server_address[1]

    def __enter__(self):
        threading.Thread(target=self._server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()

    def note_served(self, host, path):
        with self._changed:
            self._served[host, path] = self._served.get((host, path), 0) + 1
            self._changed.notify_all()

    def note_refused(self, host):
        with self._changed:
            self.refused_hosts.add(host)

    def wait_served(self, host, path, timeout):
        """True once the resource has been fetched, False if that does not happen in time."""
        deadline = time.monotonic() + timeout
        with self._changed:
            return self._changed.wait_for(lambda: (host, path) in self._served,
                                          max(0.0, deadline - time.monotonic()))

    def forget(self):
        """Start counting anew (for the next profile)."""
        with self._changed:
            self._served.clear()
