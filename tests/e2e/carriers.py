"""Decodes what browsers write: the bytes of a file as they would be without compression and encryption,
and what of a database is alive."""

from __future__ import annotations

import contextlib
import hashlib
import os
import shutil
import sqlite3
import struct
import tempfile
from collections.abc import Iterator
from pathlib import Path

import lz4.block
import plyvel
import snappy
from cryptography.hazmat.primitives.ciphers import Cipher, algorithms, modes

SQLITE, MOZLZ4, FRAMED = b"SQLite format 3\0", b"mozLz40\0", b"\xff\x06\x00\x00sNaPpY"
JOURNALS = ("-wal", "-journal")

# What Chromium encrypts with where it is told not to ask the system for a key (--password-store=basic).
KEY = hashlib.pbkdf2_hmac("sha1", b"peanuts", b"saltysalt", 1, 16)


# --- Compression and encryption -----------------------------------------------------------------

def unsnappy(data: bytes) -> bytes:
    """Empty for what is not snappy's; its module has no common error."""
    try:
        return snappy.decompress(data)
    except Exception:  # pylint: disable=broad-except
        return b""


def unframed(data: bytes) -> bytes:
    """Snappy's framing format, as in responses that Firefox keeps."""
    out, at = [], 0
    while at + 4 <= len(data):
        kind, size = data[at], int.from_bytes(data[at + 1:at + 4], "little")
        chunk, at = data[at + 4:at + 4 + size], at + 4 + size
        if kind == 0:
            out.append(unsnappy(chunk[4:]))
        elif kind == 1:
            out.append(chunk[4:])
    return b"".join(out)


def decrypted(value: bytes) -> bytes:
    if value[:3] not in (b"v10", b"v11") or len(value) % 16 != 3:
        return b""
    decryptor = Cipher(algorithms.AES(KEY), modes.CBC(b" " * 16)).decryptor()
    return decryptor.update(value[3:]) + decryptor.finalize()


def decrypted_records(data: bytes) -> bytes:
    """The commands of a file of tabs, each encrypted by itself."""
    out, at = [], 8
    while at + 4 <= len(data):
        size = int.from_bytes(data[at:at + 4], "little")
        out.append(decrypted(data[at + 4:at + 4 + size]))
        at += 4 + size
    return b"\n".join(out)


# --- leveldb ------------------------------------------------------------------------------------

def number(data: bytes, at: int) -> tuple[int, int]:
    """A number of variable length, and where it ends."""
    result = shift = 0
    while True:
        byte = data[at]
        at += 1
        result |= (byte & 127) << shift
        shift += 7
        if byte < 128:
            return result, at


def entries(block: bytes) -> Iterator[tuple[bytes, bytes]]:
    """The keys, which each share their beginning with the one before, and values of a block."""
    end, at, key = len(block) - 4 - 4 * struct.unpack("<I", block[-4:])[0], 0, b""
    while at < end:
        shared, at = number(block, at)
        own, at = number(block, at)
        size, at = number(block, at)
        key = key[:shared] + block[at:at + own]
        yield key, block[at + own:at + own + size]
        at += own + size


def table_text(data: bytes) -> bytes:
    """All blocks of a table of leveldb, and their whole keys."""
    def block(handle: bytes, at: int = 0) -> bytes:
        offset, at = number(handle, at)
        size, _ = number(handle, at)
        raw = data[offset:offset + size]
        return unsnappy(raw) if data[offset + size] == 1 else raw

    footer = data[-48:]
    _, index_at = number(footer, number(footer, 0)[1])
    out = []
    for _, handle in entries(block(footer, index_at)):
        content = block(handle)
        out += [content, *(key for key, _ in entries(content))]
    return b"\n".join(out)


def leveldb_records(folder: Path) -> list[tuple[bytes, bytes]]:
    """What is alive in a database, read from a copy: opening one changes it. Of one that cannot be opened,
    its files."""
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as scratch:
        copy = Path(scratch, "copy")
        shutil.copytree(folder, copy)
        try:
            database = plyvel.DB(str(copy))
        except plyvel.Error:
            return [(os.fsencode(path.name), path.read_bytes()) for path in sorted(copy.iterdir())]
        with contextlib.closing(database):
            return list(database)


# --- SQLite -------------------------------------------------------------------------------------

def know_order_of_webkit(database: sqlite3.Connection) -> None:
    """Its databases of scripts sort keys in an order of their own; any order will do to read them."""
    database.create_collation("IDBKEY", lambda one, other: (one > other) - (one < other))


@contextlib.contextmanager
def copied(path: Path) -> Iterator[sqlite3.Connection]:
    """A copy of a database with what stands in its journals."""
    with tempfile.TemporaryDirectory(prefix="browsersweep-e2e-") as folder:
        for name in (path.name, *(path.name + end for end in JOURNALS)):
            if (path.parent / name).is_file():
                shutil.copy(path.parent / name, folder)
        with contextlib.closing(sqlite3.connect(os.path.join(folder, path.name))) as database:
            database.text_factory = bytes
            know_order_of_webkit(database)
            yield database


def table_names(database: sqlite3.Connection) -> list[str]:
    return [name.decode() for (name,) in
            database.execute("SELECT name FROM sqlite_master WHERE type = 'table'")]


def forms(value: bytes) -> list[bytes]:
    return [form for form in (value, unsnappy(value) if len(value) > 8 else b"", decrypted(value)) if form]


def table_values(database: sqlite3.Connection) -> dict[str, bytes]:
    """The values of each table, one to a line, with what they are compressed or encrypted from."""
    return {name: b"\n".join(form for row in database.execute(f'SELECT * FROM "{name}"')
                             for value in row if isinstance(value, bytes) for form in forms(value))
            for name in table_names(database)}


def compacted(database: sqlite3.Connection) -> bytes:
    """The bytes of the database without free pages and slack."""
    database.execute("PRAGMA journal_mode = DELETE").fetchall()
    database.execute("VACUUM")
    (_, _, path), *_ = database.execute("PRAGMA database_list")
    return Path(os.fsdecode(path)).read_bytes()


def integrity(path: Path) -> str:
    """As whoever opens it next finds it: with a journal that a kill has left behind rolled back."""
    with copied(path) as database:
        return database.execute("PRAGMA integrity_check").fetchone()[0].decode()


# --- Files --------------------------------------------------------------------------------------

def decoded(path: Path, data: bytes) -> bytes:
    """What a file holds beside its bytes as they stand; SQLite's are decoded value by value."""
    if data.startswith(MOZLZ4):
        return lz4.block.decompress(data[len(MOZLZ4):])
    if path.suffix == ".ldb" and len(data) >= 48:
        return table_text(data)
    if data.startswith(FRAMED):
        return unframed(data)
    if path.parent.name == "Sessions_Encrypted":
        return decrypted_records(data)
    return b""
