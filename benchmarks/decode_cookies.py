"""The library's decoder of Safari's cookie file in Python: containers in containers, each with its limit,
that read whole models through one another. What the library is compared with in Python."""

from __future__ import annotations

import struct
import sys
from dataclasses import dataclass
from datetime import datetime, timedelta

REFERENCE = datetime(2001, 1, 1)


class DecodingError(Exception):
    pass


class Data:
    """Bytes and how far they have been read."""

    def __init__(self, data: bytes):
        self.data = data
        self.position = 0

    def take(self, length: int) -> bytes:
        piece = self.look_ahead(length)
        self.position += len(piece)
        return piece

    def take_until(self, delimiter: bytes, length: int) -> tuple[bytes, bool]:
        end = min(self.position + length, len(self.data))
        hit = self.data.find(delimiter, self.position, end)
        if hit < 0:
            return self.take(length), False
        piece = self.data[self.position:hit]
        self.position = hit + 1
        return piece, True

    def look_ahead(self, length: int) -> bytes:
        return self.data[self.position:self.position + length]

    def rest(self) -> int:
        return len(self.data) - self.position


class Container:
    """A position in bytes, or in another container, with a limit to what may still be read."""

    def __init__(self, source, limit: int):
        self.source = source
        self.limit = limit

    def take(self, length: int) -> bytes:
        piece = self.source.take(min(length, self.limit))
        self.limit -= len(piece)
        return piece

    def take_until(self, delimiter: bytes, length: int) -> tuple[bytes, bool]:
        piece, found = self.source.take_until(delimiter, min(length, self.limit))
        self.limit -= len(piece) + found
        return piece, found

    def look_ahead(self, length: int) -> bytes:
        return self.source.look_ahead(min(length, self.limit))

    def rest(self) -> int:
        return min(self.limit, self.source.rest())

    def nested(self, length: int) -> "Container":
        return Container(self, min(length, self.limit))

    def decode(self, length: int) -> bytes:
        piece = self.take(length)
        if len(piece) < length:
            raise DecodingError(f"requested {length} bytes, but received {len(piece)}")
        return piece

    def decode_numbers(self, numbers: struct.Struct) -> tuple:
        return numbers.unpack(self.decode(numbers.size))

    def decode_number(self, number: struct.Struct):
        return self.decode_numbers(number)[0]

    def decode_text(self, encoding: str, terminator: bytes) -> str:
        piece, found = self.take_until(terminator, sys.maxsize)
        if not found:
            raise DecodingError("the end of a text is missing")
        try:
            return piece.decode(encoding)
        except UnicodeDecodeError as error:
            raise DecodingError(f"a text is not {encoding}") from error


HEAD = struct.Struct("<4I")
OFFSETS = struct.Struct("<6I")
DATES = struct.Struct("<2d")
UINT16 = struct.Struct("<H")
UINT32 = struct.Struct("<I")
UINT32_BIG = struct.Struct(">I")
UINT64 = struct.Struct("<Q")
FIELDS = ("url", "name", "path", "value", "comment", "comment_url")


@dataclass
class Cookie:
    size: int
    version: int
    flags: int
    offsets: tuple
    expires: datetime
    created: datetime
    port: int | None = None
    url: str = ""
    name: str = ""
    path: str = ""
    value: str = ""
    comment: str | None = None
    comment_url: str | None = None

    @classmethod
    def decode(cls, container: Container) -> "Cookie":
        size, version, flags, has_port = container.decode_numbers(HEAD)
        offsets = container.decode_numbers(OFFSETS)
        expires, created = (REFERENCE + timedelta(seconds=date)
                            for date in container.decode_numbers(DATES))
        cookie = cls(size, version, flags, offsets, expires, created)
        if has_port == 1:
            cookie.port = container.decode_number(UINT16)
        for offset in sorted(offsets):
            if offset != 0:
                setattr(cookie, FIELDS[offsets.index(offset)],
                        container.decode_text("ascii", b"\0"))
        return cookie


@dataclass
class Page:
    cookies: list[Cookie]

    @classmethod
    def decode(cls, container: Container) -> "Page":
        if container.decode_number(UINT32) != 0x00010000:
            raise DecodingError("page header is invalid or missing")
        count = container.decode_number(UINT32)
        for _ in range(count):
            container.decode_number(UINT32)
        if container.decode_number(UINT32) != 0:
            raise DecodingError("page footer is invalid or missing")
        cookies = []
        for _ in range(count):
            size = int.from_bytes(container.look_ahead(4), "little")
            cookies.append(Cookie.decode(container.nested(size)))
        return cls(cookies)


@dataclass
class CookieFile:
    pages: list[Page]
    metadata: bytes

    @classmethod
    def decode(cls, container: Container) -> "CookieFile":
        if container.decode(4) != b"cook":
            raise DecodingError("magic number is missing or incorrect")
        sizes = [container.decode_number(UINT32_BIG)
                 for _ in range(container.decode_number(UINT32_BIG))]
        pages = [Page.decode(container.nested(size)) for size in sizes]
        container.decode(4)
        if container.decode_number(UINT64) != 0x4B00000005201707:
            raise DecodingError("footer is missing or incorrect")
        return cls(pages, container.decode(container.rest()))


if __name__ == "__main__":
    with open(sys.argv[1], "rb") as file:
        decoded = CookieFile.decode(Container(Data(file.read()), sys.maxsize))
    print(sum(len(page.cookies) for page in decoded.pages))
