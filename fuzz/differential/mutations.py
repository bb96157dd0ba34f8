"""Damages documents: bytes, whole tokens, and pieces of other documents."""

import re
import struct

# What a document falls into: tags, texts, numbers, words, space. Every other byte is a token.
TOKEN = re.compile(
    rb"<[^<>]{0,80}>|\"(?:[^\"\\]|\\.){0,80}\"|[-+]?[0-9][0-9.eE+-]*|[A-Za-z_]+|[ \t\r\n]+|.", re.S
)

BYTES = b"\x00\x01\x08\x09\x0a\x0f\x10\x13\x14 \",<\x4f\x5c\x5f\x6f\x7f\x80\xaf\xc0\xdf\xff"

NUMBERS = (0, 1, 2, 7, 8, 9, 15, 16, 127, 255, 256, 2**15, 2**16 - 1, 2**31, 2**32 - 1)
NUMBERS += (2**63, 2**64 - 1)

TOKENS = (
    b"[", b"]", b"{", b"}", b",", b":", b"null", b"true", b"-0", b"1e5", b"0.0", b"1e999", b'""',
    b"\\ud800", b"\\udc00", b"\\u0000", b"NaN", b"-", b"01", b"1.", b"_", b"0x", b"+", b" ",
    b"\x0b", b"<dict>", b"</dict>", b"<array/>", b"<key>", b"</key>", b"<key/>", b"<integer>", b"<x/>",
    b"<plist>", b"</plist>", b"<true/>", b"<!--", b"-->", b"&amp;", b"&x;", b"&#0;", b"&#xD800;",
    b"<![CDATA[", b"]]>", b"=", b";", b"(", b")", b"<", b">", b"'", b'"', b"/*", b"*/", b"//",
    b"\xef\xbb\xbf", b"\xff\xfe", b"\xc0\x80", b"\xed\xa0\x80", b"\xf4\x90\x80\x80",
)  # fmt: skip


def place_in(random, data):
    return random.randint(0, len(data))


def flip(random, data, _others):
    if not data:
        return data
    place = random.randrange(len(data))
    return data[:place] + bytes([data[place] ^ 1 << random.randrange(8)]) + data[place + 1 :]


def replace(random, data, _others):
    place = place_in(random, data)
    value = random.choice(BYTES) if random.random() < 0.7 else random.randrange(256)
    return data[:place] + bytes([value]) + data[place + 1 :]


def insert(random, data, _others):
    place = place_in(random, data)
    return data[:place] + random.choice(TOKENS) + data[place:]


def remove(random, data, _others):
    place = place_in(random, data)
    return data[:place] + data[place + random.choice((1, 1, 2, 4, 8, 30)) :]


def repeat(random, data, _others):
    place = place_in(random, data)
    return data[:place] + data[max(0, place - random.choice((1, 4, 16, 64))) :]


def cut(random, data, _others):
    return data[: place_in(random, data)]


def number(random, data, _others):
    """Writes a number that is likely to be a limit, in any width and byte order."""
    layout = random.choice((">B", ">H", ">I", "<I", ">Q", "<Q"))
    size = struct.calcsize(layout)
    place = place_in(random, data)
    value = random.choice(NUMBERS) & (1 << 8 * size) - 1
    return data[:place] + struct.pack(layout, value) + data[place + size :]


def near_end(random, data, _others):
    """The trailer of binary property lists is where the least damage does the most."""
    place = max(0, len(data) - random.randint(1, 60))
    return data[:place] + bytes([random.choice(BYTES)]) + data[place + 1 :]


def splice(random, data, others):
    other = random.choice(others)
    return data[: place_in(random, data)] + other[place_in(random, other) :]


def tokens(random, data, _others):
    """Removes, repeats, swaps or replaces a token."""
    found = TOKEN.findall(data[:4096])
    if not found:
        return data
    first, second = random.randrange(len(found)), random.randrange(len(found))
    kind = random.randrange(4)
    if kind == 0:
        del found[first]
    elif kind == 1:
        found.insert(second, found[first])
    elif kind == 2:
        found[first], found[second] = found[second], found[first]
    else:
        found[first] = random.choice(TOKENS)
    return b"".join(found) + data[4096:]


MUTATIONS = (flip, flip, replace, replace, insert, remove, repeat, cut, number, near_end, splice)
MUTATIONS += (tokens,) * 5


def with_table_moved(data, count):
    """A binary property list whose trailer knows by how much the table has moved."""
    if data[:6] != b"bplist" or len(data) < 40:
        return data
    (table,) = struct.unpack(">Q", data[-8:])
    return data[:-8] + struct.pack(">Q", (table + count) % 2**64)


def mutated(random, data, others):
    """The document after one or a few of these. Few, or nothing valid would be left."""
    for _ in range(random.choice((1, 1, 1, 2, 3))):
        size = len(data)
        data = random.choice(MUTATIONS)(random, data, others)
        if len(data) != size and random.random() < 0.8:
            data = with_table_moved(data, len(data) - size)
    return data
