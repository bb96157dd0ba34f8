"""Random documents of every format, most of them valid, written in the many ways a format allows.

Each function takes a `random.Random` and gives bytes. A value is a tree of Python's own types; a
dictionary is a list of pairs in `Dict`, because files may hold equal keys.
"""

import base64
import datetime
import plistlib
import struct


class Dict(list):
    """Pairs of a key and a value."""


class Date(float):
    """Seconds since 2001."""


WORDS = ["", "a", "name", "url", "children", "profile", "Allowed Domains", "x" * 20, "0", "true"]
LETTERS = "aZ09 /.:-_$<>&'\"\\;,={}()[]\t\n\r\x7fé\u0416\u2028\ufffd\uffee😀𝄞\U0010fffd"
INTEGERS = [0, 1, -1, 127, 128, 255, 256, 65535, 65536, 2**31, 2**32, 2**53 + 1]
INTEGERS += [2**63 - 1, -(2**63)]
LARGE = [2**63, 2**64 - 1, 2**64, -(2**63) - 1, 2**70, -(2**127), 10**40]
REALS = [0.0, -0.0, 0.5, 1.0, -2.5, 1e16, 1e300, 5e-324, 2.0**63, 1.7976931348623157e308]


def string(random):
    if random.random() < 0.4:
        return random.choice(WORDS)
    return "".join(random.choices(LETTERS, k=random.choice((1, 2, 3, 5, 14, 15, 16, 40))))


def integer(random):
    if random.random() < 0.5:
        return random.choice(INTEGERS)
    return random.randint(-1, 1) * random.getrandbits(random.choice((4, 8, 16, 32, 62, 63)))


def real(random):
    if random.random() < 0.5:
        return random.choice(REALS)
    return random.uniform(-1, 1) * 10 ** random.randint(-20, 20)


def tree(random, scalar, depth=None):
    """A value whose scalars the function gives."""
    if depth is None:
        depth = random.choice((0, 1, 2, 2, 3, 3, 4, 6))
    kind = random.random()
    if depth == 0 or kind < 0.2:
        return scalar(random)
    count = random.choice((0, 1, 1, 2, 3, 4))
    if kind < 0.5:
        return [tree(random, scalar, depth - 1) for _ in range(count)]
    pairs = Dict((string(random), tree(random, scalar, depth - 1)) for _ in range(count))
    if pairs and random.random() < 0.1:
        pairs.append((random.choice(pairs)[0], scalar(random)))
    return pairs


def deep(random, value, wrap):
    """A value within as many containers as are just allowed, or one more."""
    for _ in range(random.choice((510, 511, 512, 513, 600))):
        value = wrap(value)
    return value


# --- JSON ---


def json_scalar(random):
    return random.choice((json_string, json_string, json_number, json_word))(random)


def json_word(random):
    return random.choice((b"null", b"true", b"false"))


def json_number(random):
    kind = random.random()
    if kind < 0.4:
        return b"%d" % integer(random)
    if kind < 0.7:
        return repr(real(random)).encode()
    if kind < 0.75:
        return b"%d" % random.choice(LARGE)
    digits = b"%d" % random.choice((0, 1, 10, 123, 2**53, 2**53 + 1))
    fraction = random.choice((b"", b".0", b".5", b".000", b".25"))
    exponents = (b"", b"e0", b"E+2", b"e-1", b"e10", b"e-400", b"e17", b"e18", b"e308")
    exponent = random.choice(exponents)
    return random.choice((b"", b"-")) + digits + fraction + exponent


def json_string(random, value=None):
    out = []
    for letter in string(random) if value is None else value:
        code = ord(letter)
        units = struct.unpack(f">{len(letter.encode('utf-16be')) // 2}H", letter.encode("utf-16be"))
        long = "".join(random.choice(("\\u%04x", "\\u%04X")) % unit for unit in units)
        short = {"\\": "\\\\", '"': '\\"', "\n": "\\n", "\t": "\\t", "\r": "\\r"}
        if letter in short or code < 32:
            out.append(random.choice((short.get(letter, long), long)))
        elif letter == "/":
            out.append(random.choice(("/", "\\/", long)))
        else:
            out.append(long if random.random() < 0.15 else letter)
    if random.random() < 0.01:
        surrogate = "\\u%04x" % random.randint(0xD800, 0xDFFF)
        out.append(random.choice(("\\b", "\\f", "\\u0000", surrogate)))
    return b'"' + "".join(out).encode("utf-8") + b'"'


def json_space(random):
    return random.choice((b"", b"", b"", b" ", b"\n", b"\t \r\n"))


def json_text(random, value, sign=b""):
    """A value, perhaps after a sign, with space around all of them."""
    space = json_space
    if sign:
        return space(random) + sign + json_text(random, value)
    if isinstance(value, bytes):
        return space(random) + value + space(random)
    if isinstance(value, Dict):
        parts = [
            space(random) + json_string(random, key) + json_text(random, each, b":")
            for key, each in value
        ]
        return space(random) + b"{" + (b",".join(parts) or space(random)) + b"}" + space(random)
    parts = [json_text(random, each) for each in value]
    return space(random) + b"[" + (b",".join(parts) or space(random)) + b"]" + space(random)


def json_document(random):
    value = json_text(random, tree(random, json_scalar))
    kind = random.random()
    if kind < 0.01:
        wraps = (lambda each: b"[" + each + b"]", lambda each: b'{"k":' + each + b"}")
        return deep(random, value, random.choice(wraps))
    if kind < 0.03:
        return b"\xef\xbb\xbf" + value
    if kind < 0.04:
        return value.decode("utf-8").encode(random.choice(("utf-16", "utf-16be", "utf-32")))
    if kind < 0.06:
        return b"[" + random.choice((b"NaN", b"Infinity", b"-Infinity", b"1e999")) + b"]"
    return value


# --- property lists: binary ---


def date(random):
    if random.random() < 0.3:
        return Date(random.choice((0.0, -0.5, 1e-9, 1e18, -1e300, float("nan"), float("inf"))))
    return Date(random.randint(-63_000_000_000, 250_000_000_000))


def binary_scalar(random):
    kind = random.randrange(8)
    if kind == 0:
        return random.random() < 0.5
    if kind == 1:
        return integer(random) if random.random() < 0.9 else random.choice(LARGE[:2])
    if kind == 2:
        return real(random) if random.random() < 0.95 else float(random.choice(("nan", "inf")))
    if kind == 3:
        return date(random)
    if kind == 4:
        return random.randbytes(random.choice((0, 1, 3, 14, 15, 16, 60)))
    if kind == 5:
        return plistlib.UID(abs(integer(random)))
    return string(random)


class BinaryWriter:
    """Objects in any order, with any widths, shared or not."""

    def __init__(self, random):
        self.random = random
        self.objects = []
        self.shared = {}
        self.may_share = random.random() < 0.7

    def add(self, value):
        if isinstance(value, Dict):
            pairs = [(self.add(key), self.add(each)) for key, each in value]
            return self.keep((0xD0, [key for key, _ in pairs] + [each for _, each in pairs]))
        if isinstance(value, list):
            return self.keep((0xA0, [self.add(each) for each in value]))
        data = self.scalar(value)
        if self.may_share and data in self.shared:
            return self.shared[data]
        return self.shared.setdefault(data, self.keep(data))

    def keep(self, data):
        self.objects.append(data)
        return len(self.objects) - 1

    def head(self, kind, count):
        if count < 15 and self.random.random() < 0.95:
            return bytes([kind | count])
        least = max(0, (max(count.bit_length(), 1) + 7) // 8 - 1).bit_length()
        width = self.random.choice((least, least, min(least + 1, 3), 3))
        return bytes([kind | 0xF, 0x10 | width]) + count.to_bytes(1 << width, "big")

    def scalar(self, value):
        if isinstance(value, bool):
            return b"\x09" if value else b"\x08"
        if isinstance(value, int):
            return self.integer(value)
        if isinstance(value, Date):
            return b"\x33" + struct.pack(">d", value)
        if isinstance(value, float):
            return self.real(value)
        if isinstance(value, bytes):
            return self.head(0x40, len(value)) + value
        if isinstance(value, str):
            return self.string(value)
        width = max(1, (value.data.bit_length() + 7) // 8)
        width = self.random.choice((width, width, 8))
        return bytes([0x80 | (width - 1)]) + value.data.to_bytes(width, "big")

    def integer(self, value):
        widths = [width for width in (0, 1, 2) if 0 <= value < 1 << (8 << width)]
        widths += [3] if -(2**63) <= value < 2**63 else []
        width = self.random.choice((widths or [4])[:1] * 3 + [4])
        return bytes([0x10 | width]) + value.to_bytes(1 << width, "big", signed=width >= 3)

    def real(self, value):
        if self.random.random() < 0.3 and not 1e38 < abs(value) < float("inf"):
            return b"\x22" + struct.pack(">f", value)
        return b"\x23" + struct.pack(">d", value)

    def string(self, value):
        if value.isascii() and self.random.random() < 0.9:
            return self.head(0x50, len(value)) + value.encode("ascii")
        data = value.encode("utf-16be")
        return self.head(0x60, len(data) // 2) + data

    def document(self, root):
        top = self.add(root)
        order = list(range(len(self.objects)))
        if self.random.random() < 0.5:
            self.random.shuffle(order)
        places = {number: place for place, number in enumerate(order)}
        least = max(1, (len(order).bit_length() + 7) // 8)
        width = self.random.choice((least, least, least, least + 1, 8))
        data, offsets = b"bplist00", []
        for number in order:
            offsets.append(len(data))
            data += self.encoded(self.objects[number], places, width)
        table = len(data)
        size = max(1, (table.bit_length() + 7) // 8)
        size = self.random.choice((size, size, size, size + 1, 8))
        data += b"".join(offset.to_bytes(size, "big") for offset in offsets)
        return data + struct.pack(">6xBBQQQ", size, width, len(order), places[top], table)

    def encoded(self, found, places, width):
        if isinstance(found, bytes):
            return found
        kind, references = found
        count = len(references) // (2 if kind == 0xD0 else 1)
        places = b"".join(places[each].to_bytes(width, "big") for each in references)
        return self.head(kind, count) + places


class Lattice(BinaryWriter):
    """Containers that all hold the next one more than once: small files of large values."""

    def add(self, value):
        place = super().add(value)
        for _ in range(self.random.choice((2, 5, 12, 40))):
            count = self.random.choice((1, 2, 2, 3))
            place = self.keep((0xA0, [place] * count))
        return place


def plain(value):
    """As plistlib's writers take it, of equal keys the last."""
    if isinstance(value, Dict):
        return {key: plain(each) for key, each in value}
    if isinstance(value, list):
        return [plain(each) for each in value]
    if isinstance(value, Date):
        seconds = value if abs(value) < 63e9 else 0.5
        return datetime.datetime(2001, 1, 1) + datetime.timedelta(seconds=seconds)
    return value


def binary_document(random):
    value = tree(random, binary_scalar)
    kind = random.random()
    if kind < 0.3:
        return plistlib.dumps(plain(value), fmt=plistlib.FMT_BINARY, sort_keys=False)
    if kind < 0.31:
        value = deep(random, value, lambda each: [each])
    # The lattice adds to every container, so it gets a scalar.
    if kind > 0.99:
        return Lattice(random).document(binary_scalar(random))
    return BinaryWriter(random).document(value)


# --- property lists: XML ---

HEADS = [
    b"",
    b'<?xml version="1.0" encoding="UTF-8"?>\n',
    b'<?xml version="1.0"?>',
    b'<?xml version="1.0" encoding="UTF-8"?>\n<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" '
    b'"http://www.apple.com/DTDs/PropertyList-1.0.dtd">\n',
    b"<!-- plist --><!DOCTYPE plist>",
    b"<?pi?>",
]


def xml_space(random):
    return random.choice(("", "", "\n", "\n\t", " ", "<!-- c -->", "\r\n"))


def xml_escaped(random, value):
    """Control characters cannot be written, and nobody may expect a carriage return to stay."""
    out = []
    for letter in value:
        if letter in "<&\r" or random.random() < 0.05:
            out.append(random.choice(("&#%d;", "&#x%x;")) % ord(letter))
        elif letter in ">\"'":
            names = {">": "&gt;", '"': "&quot;", "'": "&apos;"}
            out.append(random.choice((letter, names[letter])))
        else:
            out.append(letter)
    text = "".join(out)
    if random.random() < 0.1:
        text += "<![CDATA[" + random.choice(("", "x<y>&amp;", "]] >")) + "]]>"
    if random.random() < 0.05:
        text += random.choice(("<!-- c -->", "<?pi c?>", "&lt;", "&amp;"))
    return text


def xml_scalar(random):
    kind = random.randrange(7)
    around = random.choice(("", "", "", " ", "\n"))
    if kind == 0:
        return random.choice(("<true/>", "<false/>", "<true></true>", "<false a='b'/>"))
    if kind == 1:
        value = integer(random) if random.random() < 0.9 else random.choice(LARGE)
        capital = "0X%X" if value >= 0 else "%d"
        form = random.choice(("%d", "%d", "%d", "%#x", "%+d", "%030d", capital))
        return f"<integer>{around}{form % value}{around}</integer>"
    if kind == 2:
        names = ("nan", "inf", "-infinity", "+1.", ".5", "1E5", "-1e-5", "1e-400", "1e400", "0x1p3")
        digits = random.choice(names) if random.random() < 0.3 else repr(real(random))
        return f"<real>{around}{digits}{around}</real>"
    if kind == 3:
        return f"<date>{around}{xml_date(random)}{around}</date>"
    if kind == 4:
        digits = base64.b64encode(random.randbytes(random.choice((0, 1, 2, 3, 30)))).decode()
        place = random.randint(0, len(digits))
        return f"<data>{digits[:place]}{around}{digits[place:]}</data>"
    return f"<string>{xml_escaped(random, string(random))}</string>"


def xml_date(random):
    year = random.choice((0, 1, 1600, 1900, 1970, 2000, 2001, 2024, 2100, 9999))
    month, day = random.randint(1, 12), random.randint(1, 29)
    time = [random.randint(0, most) for most in (23, 59, 59)]
    if random.random() < 0.1:
        day, time[2] = random.choice((0, 30, 31, 32)), random.choice((59, 60))
    return "%04d-%02d-%02dT%02d:%02d:%02dZ" % (year, month, day, *time)


def xml_text(random, value):
    space = xml_space(random)
    if isinstance(value, str):
        return space + value
    parts = []
    if isinstance(value, Dict):
        for key, each in value:
            key = xml_escaped(random, key)
            parts.append(f"{xml_space(random)}<key>{key}</key>{xml_text(random, each)}")
    else:
        parts = [xml_text(random, each) for each in value]
    name = "dict" if isinstance(value, Dict) else "array"
    if not parts and random.random() < 0.5:
        return f"{space}<{name}/>"
    return f"{space}<{name}>{''.join(parts)}{xml_space(random)}</{name}>"


def xml_document(random):
    kind = random.random()
    if kind < 0.15:
        return plistlib.dumps(plain(tree(random, plain_scalar)), sort_keys=False)
    value = xml_text(random, tree(random, xml_scalar))
    if kind < 0.16:
        value = deep(random, value, lambda each: f"<array>{each}</array>")
    if random.random() < 0.9:
        value = f'<plist version="1.0">{value}{xml_space(random)}</plist>{xml_space(random)}'
    data = random.choice(HEADS) + value.encode("utf-8")
    if kind > 0.97:
        return random.choice((b"\xef\xbb\xbf", b" ", b"\n", b"\xef\xbb\xbf\t")) + data
    if kind > 0.93:
        encoding = random.choice(("utf-16", "utf-16be", "utf-16le", "iso-8859-1", "windows-1252"))
        text = data.decode("utf-8").replace("UTF-8", encoding)
        return text.encode(encoding, "xmlcharrefreplace")
    return data


def plain_scalar(random):
    """What plistlib can write as XML."""
    while True:
        value = binary_scalar(random)
        if not isinstance(value, plistlib.UID):
            return value


# --- property lists: old style ---


def old_string(random, value):
    if value and value.isascii() and all(each.isalnum() or each in "_$/:.-" for each in value):
        if random.random() < 0.8:
            return value
    quote = random.choice("'\"")
    out = []
    for letter in value:
        kind = random.random()
        if letter in (quote, "\\"):
            out.append("\\" + letter)
        elif kind < 0.1:
            units = letter.encode("utf-16be")
            out += ["\\U%02x%02x" % tuple(units[at : at + 2]) for at in range(0, len(units), 2)]
        elif kind < 0.15:
            out.append("\\%03o" % random.randrange(256))
        elif kind < 0.17:
            out.append(random.choice(("\\n", "\\a", "\\q", "\\7", "\\8", "\\U12")))
        else:
            out.append(letter)
    return quote + "".join(out) + quote


def old_space(random):
    return random.choice(("", "", "", " ", "\n", "\t", "/* c */", "// c\n", "\f"))


def old_scalar(random):
    if random.random() < 0.2:
        digits = random.randbytes(random.choice((0, 1, 5))).hex(random.choice(" \n"))
        return f"<{digits}>"
    return old_string(random, string(random))


def old_text(random, value):
    around = (old_space(random), old_space(random))
    if isinstance(value, str):
        return around[0] + value + around[1]
    if isinstance(value, Dict):
        return around[0] + "{" + old_entries(random, value) + "}" + around[1]
    parts = ",".join(old_text(random, each) for each in value)
    last = "," if parts and random.random() < 0.2 else ""
    return around[0] + "(" + parts + last + old_space(random) + ")" + around[1]


def old_entries(random, pairs):
    out = []
    for key, value in pairs:
        out.append(old_space(random) + old_string(random, key) + old_space(random))
        if random.random() < 0.9:
            out.append("=" + old_text(random, value))
        out.append(";")
    return "".join(out) + old_space(random)


def old_document(random):
    value = tree(random, old_scalar)
    if isinstance(value, Dict) and random.random() < 0.3:
        document = old_entries(random, value)
    else:
        document = old_text(random, value)
    if random.random() < 0.01:
        document = deep(random, document, lambda each: "(" + each + ")")
    if random.random() < 0.05:
        marks = {"utf-8-sig": b"", "utf-16be": b"\xfe\xff", "utf-16le": b"\xff\xfe"}
        encoding = random.choice(sorted(marks))
        return marks[encoding] + document.encode(encoding)
    return document.encode("utf-8")


# --- cookie files ---


def cookie_text(random):
    value = "".join(each for each in string(random) if each.isascii() and each != "\0")
    return value.encode("ascii") + b"\0"


def cookie(random):
    has_port = random.choice((0, 0, 0, 1, 1, 2))
    present = [field < 4 or random.random() < 0.3 for field in range(6)]
    if random.random() < 0.1:
        present[random.randrange(6)] = False
    order = list(range(6))
    if random.random() < 0.3:
        random.shuffle(order)
    offsets, texts = [0] * 6, b""
    start = 58 if has_port == 1 else 56
    for field in order:
        if present[field]:
            offsets[field] = start + len(texts)
            texts += cookie_text(random)
    if random.random() < 0.03:
        offsets[random.randrange(6)] = random.choice(offsets)
    times = struct.pack("<2d", date(random), date(random))
    port = struct.pack("<H", random.getrandbits(16)) if has_port == 1 else b""
    size = start + len(texts) + (random.choice((-1, 1, 4, 1000)) if random.random() < 0.03 else 0)
    head = (size, random.choice((0, 1, 2**32 - 1)), random.getrandbits(32), has_port)
    return struct.pack("<10I", *head, *offsets) + times + port + texts


def page(random):
    cookies = [cookie(random) for _ in range(random.choice((0, 1, 1, 2, 3)))]
    offsets, place = [], 12 + 4 * len(cookies)
    for each in cookies:
        offsets.append(place)
        place += len(each)
    head = struct.pack(f"<2I{len(offsets)}II", 0x10000, len(cookies), *offsets, 0)
    return head + b"".join(cookies)


def cookie_document(random):
    pages = [page(random) for _ in range(random.choice((0, 1, 1, 2, 3)))]
    sizes = [len(each) for each in pages]
    if sizes and random.random() < 0.03:
        sizes[random.randrange(len(sizes))] += random.choice((-1, 1, 1000, -4))
    head = struct.pack(f">4sI{len(sizes)}I", b"cook", len(sizes), *(max(0, each) for each in sizes))
    checksum = sum(sum(each[::4]) for each in pages) & 0xFFFFFFFF
    tail = struct.pack(">I", checksum) + bytes.fromhex("071720050000004b")
    metadata = random.choice((binary_document, binary_document, xml_document, old_document))(random)
    return head + b"".join(pages) + tail + metadata
