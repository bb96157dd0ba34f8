"""A flat parser of Safari's cookie file in Python: no limits, no checks, four texts of a cookie."""

import struct
import sys


def cookies(data: bytes):
    count = struct.unpack_from(">I", data, 4)[0]
    sizes = struct.unpack_from(f">{count}I", data, 8)
    position = 8 + 4 * count
    for size in sizes:
        number = struct.unpack_from("<I", data, position + 4)[0]
        for offset in struct.unpack_from(f"<{number}I", data, position + 8):
            yield cookie(data, position + offset)
        position += size


def cookie(data: bytes, start: int) -> dict:
    fields = struct.unpack_from("<10I2d", data, start)
    texts = [text(data, start + offset) if offset else "" for offset in fields[4:10]]
    return {"size": fields[0], "flags": fields[2], "expires": fields[10], "created": fields[11],
            "domain": texts[0], "name": texts[1], "path": texts[2], "value": texts[3]}


def text(data: bytes, start: int) -> str:
    return data[start:data.index(b"\0", start)].decode("ascii")


if __name__ == "__main__":
    with open(sys.argv[1], "rb") as file:
        print(sum(1 for _ in cookies(file.read())))
