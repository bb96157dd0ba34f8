"""Finds the markers of the planted sites in bytes, in every form that browsers give them.

Plain, UTF-16 both ways, reversed (as Firefox turns hosts around), each character plus one (how leveldb
shortens the keys of its index), base64 at each of its three offsets, hosts as SHA-256 and MD5, and typed
addresses as MD5.
"""

from __future__ import annotations

import base64
import hashlib
import re
from collections import Counter
from collections.abc import Callable, Iterator

from planted import KINDS, SITES

LARGEST_BASE64 = 600_000
WORDS = tuple(site.word for site in SITES)

Pattern = tuple["re.Pattern[bytes]", Callable[[bytes], str]]


def wide(codec: str) -> Pattern:
    def spread(text: str) -> bytes:
        return text.encode(codec)
    kind = b"".join((b"[a-z0-9]\0", b"\0[a-z0-9]")[codec.endswith("be")] for _ in range(4))
    words = b"|".join(re.escape(spread(word)) for word in WORDS)
    return re.compile(spread("qz") + kind + b"(?:" + words + b")"), lambda found: found.decode(codec)


def plus_one(text: str) -> bytes:
    return bytes(character + 1 for character in text.encode())


PLAIN: Pattern = (re.compile(b"qz[a-z0-9]{4}(?:" + "|".join(WORDS).encode() + b")"), bytes.decode)
PATTERNS: tuple[Pattern, ...] = (
    PLAIN,
    (re.compile(b"(?:" + "|".join(word[::-1] for word in WORDS).encode() + b")[a-z0-9]{4}zq"),
     lambda found: found.decode()[::-1]),
    wide("utf-16-le"),
    wide("utf-16-be"),
    (re.compile(plus_one("qz") + b"[1-{]{4}(?:" + b"|".join(plus_one(word) for word in WORDS) + b")"),
     lambda found: bytes(character - 1 for character in found).decode("latin-1")),
)


def base64_forms(text: str) -> Iterator[bytes]:
    """What of the text's base64 does not depend on what stands before and after it."""
    for before in range(3):
        form = base64.b64encode(b"\0" * before + text.encode())
        start = (0, 2, 3)[before]
        end = len(form) if (before + len(text)) % 3 == 0 else len(form.rstrip(b"=")) - 1
        yield form[start:end]


BASE64 = {form: f"qz{kind}{word}" for kind in KINDS for word in WORDS
          for form in base64_forms(f"qz{kind}{word}")}
BASE64_PATTERN = re.compile(b"|".join(re.escape(form) for form in sorted(BASE64)))


def hashed() -> Iterator[tuple[bytes, str]]:
    for site in SITES:
        labels = b"".join(bytes([len(label)]) + label.encode() for label in site.host.split("."))
        yield base64.b64encode(hashlib.sha256(labels + b"\0").digest()), site.marker("hsts")
        yield hashlib.md5(site.host.encode()).hexdigest().encode(), site.marker("hmd5")
        typed = f"{site.origin}/{site.marker('typd')}"
        yield hashlib.md5(typed.encode()).hexdigest().encode(), site.marker("thmb")


HASHED = dict(hashed())


def markers_in(data: bytes) -> Counter:
    """How often each marker stands in the bytes."""
    data = data.replace(bytes(512), b"\0\0")  # Firefox makes its databases larger than they need to be
    found: Counter = Counter()
    for pattern, text in PATTERNS:
        found.update(text(match) for match in pattern.findall(data))
    if len(data) < LARGEST_BASE64:
        found.update(BASE64[match] for match in BASE64_PATTERN.findall(data))
    for form, marker in HASHED.items():
        if form in data:
            found[marker] += data.count(form)
    return found
