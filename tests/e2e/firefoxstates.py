"""Firefox's files about servers, read record by record, and what is written to them after long use alone.

Of other ways to a server Firefox writes those of the pages that it visited by itself.
"""

from __future__ import annotations

import struct
from pathlib import Path

from planted import FRAME, GONE, KEPT, Site

# Before the key: a sum over all numbers, how often it was used, the day of its last use.
HEAD_SIZE, KEY_SIZE, LAST_DAY = 6, 256, 20_000
OWN, WITHIN_KEPT = "", f"^partitionKey=%28https%2C{KEPT.registrable}%29"
# The files have the same keys and values in both versions; the older one's stay beside the newer one's.
WAYS, WAYS_VALUE_SIZE = "AlternateServices", 1024
STATES = (
    ("SiteSecurityServiceState", 24, "{host}{attributes}", "4102444800000,1,1"),
    (WAYS, WAYS_VALUE_SIZE, "https:{host}:443:.:{attributes}:3",
     "https:{host}:443:alt.{domain}:443::n:4102444800:h3:y:1:n:{attributes}::|n:y:"),
)


def record(key: str, value: str, value_size: int) -> bytes:
    body = struct.pack(">HH", 1, LAST_DAY) + key.encode().ljust(KEY_SIZE, b"\0") \
        + value.encode().ljust(value_size, b"\0")
    total = 0
    for (number,) in struct.iter_unpack(">H", body):
        total ^= number
    return struct.pack(">H", total) + body


def add_records(folder: Path) -> None:
    for name, size, *forms in STATES:
        pairs = [[form.format(host=site.host, domain=site.registrable, attributes=attributes)
                  for form in forms] for site, attributes in ((GONE, OWN), (KEPT, OWN), (FRAME, WITHIN_KEPT))]
        with (folder / f"{name}.bin").open("ab") as file:
            file.write(b"".join(record(key, value, size) for key, value in pairs))
        (folder / f"{name}.txt").write_text("".join(
            f"{key}\t1\t{LAST_DAY}\t{value}\n" for key, value in pairs), "utf-8")


def ways(folder: Path) -> list[bytes]:
    """The records of a profile's other ways to servers."""
    data, size = (folder / f"{WAYS}.bin").read_bytes(), HEAD_SIZE + KEY_SIZE + WAYS_VALUE_SIZE
    return [data[start:start + size] for start in range(0, len(data), size)
            if any(data[start:start + size])]


def pairs_of(records: list[bytes]) -> dict[str, str]:
    """What records say, by key: when one was used last is the browser's affair."""
    split = HEAD_SIZE + KEY_SIZE
    return {each[HEAD_SIZE:split].rstrip(b"\0").decode(): each[split:].rstrip(b"\0").decode()
            for each in records}


def way_by_firefox(site: Site) -> str:
    """The key under which Firefox keeps what the site's pages say of another way to it."""
    return f"https:{site.host}:443:.::."
