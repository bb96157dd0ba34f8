"""Reads a binary cookie file by the offsets that it states, and prints one line per cookie."""
import plistlib
import struct
import sys

data = sys.stdin.buffer.read()
assert data[:4] == b"cook"
(count,) = struct.unpack_from(">I", data, 4)
sizes = struct.unpack_from(">%dI" % count, data, 8)
start = 8 + 4 * count
checksum = 0


def text(record, offset):
    return record[offset : record.index(b"\0", offset)].decode("ascii") if offset else None


for size in sizes:
    page = data[start : start + size]
    start += size
    checksum += sum(page[::4])
    header, cookies = struct.unpack_from("<II", page)
    assert header == 0x00010000
    offsets = struct.unpack_from("<%dI" % cookies, page, 8)
    assert struct.unpack_from("<I", page, 8 + 4 * cookies) == (0,)
    for offset in offsets:
        (length,) = struct.unpack_from("<I", page, offset)
        record = page[offset : offset + length]
        fields = struct.unpack_from("<10I2d", record)
        port = struct.unpack_from("<H", record, 56)[0] if fields[3] == 1 else None
        texts = [text(record, each) for each in fields[4:10]]
        print(fields[1], fields[2], port, *fields[10:12], *texts, sep="|")
assert struct.unpack_from(">I", data, start) == (checksum & 0xFFFFFFFF,)
assert data[start + 4 : start + 12] == bytes.fromhex("071720050000004b")
print(plistlib.loads(data[start + 12 :]))
