"""What Python makes of a document, described as fuzz/Describe.cpp describes the library's view.

JSON is read by `json`, binary and XML property lists by `plistlib`, each as it comes, with the
rules of rules.py watching over it. Old-style property lists and cookie files, which Python cannot
read, have plain readers here, written from the description of the format.
"""

import importlib.util
import io
import json
import plistlib
import re
import struct
from datetime import datetime, timedelta
from xml.parsers.expat import ExpatError

from rules import Refused, Undecided, require

DEEPEST = 512

# What a reader of Python raises for a document that is none. Anything else is an error here.
REFUSALS = (ValueError, ExpatError, AttributeError, IndexError, TypeError, struct.error)


def number(kind, value):
    return b"%c%d;" % (ord(kind), value)


def double(kind, value):
    bits = b"nan" if value != value else b"%016x" % struct.unpack(">Q", struct.pack(">d", value))
    return b"%c%b;" % (ord(kind), bits)


def piece(kind, data):
    return b"%c%d:%b" % (ord(kind), len(data), data)


def text(value):
    try:
        return piece("s", value.encode("utf-8"))
    except UnicodeEncodeError:
        raise Refused("whole characters") from None


# --- JSON ---


class Real:
    """A number that is no integer of 64 bits: all that the library says of it."""


class Members(list):
    """An object's members, as the file has them."""


def whole_if_possible(value):
    """1.0 is the integer 1."""
    require(abs(value) != float("inf"), "numbers in range")
    return int(value) if value.is_integer() and -(2**63) <= value < 2**63 else Real


def json_integer(digits):
    if len(digits) < 25 and -(2**63) <= int(digits) < 2**63:
        return int(digits)
    return whole_if_possible(float(digits))


def json_constant(_name):
    raise Refused("no constants")


DECODER = json.JSONDecoder(
    object_pairs_hook=Members,
    parse_int=json_integer,
    parse_float=lambda digits: whole_if_possible(float(digits)),
    parse_constant=json_constant,
)


def describe_json(value, out, depth=0):
    if value is None or value is True or value is False:
        out.append({None: b"n", True: b"t", False: b"f"}[value])
    elif value is Real:
        out.append(b"r")
    elif isinstance(value, int):
        out.append(number("i", value))
    elif isinstance(value, str):
        out.append(text(value))
    else:
        require(depth < DEEPEST, "512 levels")
        if isinstance(value, Members):
            describe_members(value, out, depth)
        else:
            out.append(b"[%d:" % len(value))
            for element in value:
                describe_json(element, out, depth + 1)


def describe_members(members, out, depth):
    """Of equal keys the library takes the first. The others must be well-formed all the same."""
    first = {}
    for key, value in members:
        found = [text(key)]
        describe_json(value, found, depth + 1)
        first.setdefault(key, b"".join(found))
    out.append(b"{%d:" % len(first))
    out.extend(first.values())


def read_json(data):
    try:
        document = data.decode("utf-8-sig")
    except UnicodeDecodeError:
        raise Refused("JSON in UTF-8") from None
    out = []
    try:
        describe_json(DECODER.decode(document), out)
    except RecursionError:
        raise Refused("512 levels") from None
    return b"".join(out)


# --- property lists: what both forms share ---


class Seconds(float):
    """A date as the library has it: a double of seconds since 2001, without datetime's limits."""


class Dates:
    """Stands in for the module datetime within plistlib."""

    timedelta = staticmethod(lambda seconds: Seconds(seconds))

    class datetime:
        def __init__(self, year, *rest):
            # The year 0 is one to the library. The calendar repeats after 400 years.
            moment = datetime(year or 400, *rest)
            self.seconds = (moment - datetime(2001, 1, 1)) // timedelta(seconds=1)
            self.seconds -= 0 if year else 146097 * 86400

        def __add__(self, seconds):
            return seconds


class Entries(dict):
    """A dictionary that keeps equal keys, as the library does. Of those the last one counts."""

    def __init__(self):
        super().__init__()
        self.pairs = []

    def __setitem__(self, key, value):
        self.pairs.append((key, value))


def private_plistlib():
    """A plistlib for this file alone, because its dates and its file are replaced."""
    spec = importlib.util.spec_from_file_location("differential_plistlib", plistlib.__file__)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    module.datetime = Dates
    return module


reader = private_plistlib()

SCALARS = {
    bool: lambda value: b"t" if value else b"f",
    int: lambda value: number("i", value),
    float: lambda value: double("r", value),
    Seconds: lambda value: double("d", value),
    Dates.datetime: lambda value: double("d", float(value.seconds)),
    bytes: lambda value: piece("x", value),
    str: text,
    reader.UID: lambda value: number("u", value.data),
}


class Describer:
    """Objects that several containers share are described once."""

    def __init__(self):
        self.known = {}
        self.open = set()

    def describe(self, value, levels=DEEPEST):
        """The description, how many containers lie within each other, and how many values."""
        scalar = SCALARS.get(type(value))
        if scalar:
            self.check(value)
            return scalar(value), 0, 1
        require(value is not None, "some value")
        if id(value) not in self.known:
            require(id(value) not in self.open, "no cycles")
            require(levels > 0, "512 levels")
            self.open.add(id(value))
            self.known[id(value)] = self.container(value, levels - 1)
        found = self.known[id(value)]
        require(found[1] <= levels, "512 levels")
        return found

    @staticmethod
    def check(value):
        if type(value) is int:
            require(-(2**63) <= value < 2**64, "64 bits")

    def container(self, value, levels):
        out, depth, values, length = [], 0, 1, 0
        if isinstance(value, Entries):
            out.append(b"{%d:" % len(value.pairs))
            elements = [each for pair in value.pairs for each in pair]
            for key, _ in value.pairs:
                require(isinstance(key, str), "keys are texts")
        else:
            out.append(b"[%d:" % len(value))
            elements = value
        for element in elements:
            found = self.describe(element, levels)
            depth, values = max(depth, found[1]), values + found[2]
            length += len(found[0])
            if values > MOST_VALUES or length > MOST_BYTES:
                raise Undecided("bounded growth")
            out.append(found[0])
        return b"".join(out), depth + 1, values


# Some way below the library's own limits, which depend on the file's length.
MOST_VALUES = 1 << 18
MOST_BYTES = 4 << 20


def described(value):
    try:
        return Describer().describe(value)[0]
    except RecursionError:
        raise Refused("512 levels") from None


# --- binary property lists ---


class Watched(io.BytesIO):
    """The file that plistlib reads: trailer, table, and then object by object."""

    WITH_COUNT = (0x40, 0x50, 0x60, 0xA0, 0xD0)

    def __init__(self, data):
        super().__init__(data)
        self.size = len(data)
        self.table = None
        self.reads = 0
        self.token = 0

    def seek(self, offset, whence=0):
        if self.table is not None and self.reads > 2:
            require(8 <= offset < self.table, "objects in their place")
        self.since_seek = 0
        return super().seek(offset, whence)

    def read(self, count=-1):
        self.reads += 1
        if self.reads <= 2:
            data = super().read(count)
            if self.reads == 1:
                self.check_trailer(data)
            else:
                self.reads = 3
            return data
        require(count <= self.table - self.tell(), "objects in their place")
        self.unread -= count
        require(self.unread >= 0, "objects apart")
        data = super().read(count)
        self.check_head(data)
        self.since_seek += 1
        return data

    def check_trailer(self, trailer):
        require(self.size >= 8 + 1 + 32, "exact trailer")
        offset_size, reference_size, count, _, self.table = struct.unpack(">6xBBQQQ", trailer)
        require(1 <= offset_size <= 8 and 1 <= reference_size <= 8, "exact trailer")
        require(self.table > 8 and count > 0, "exact trailer")
        require(self.table + count * offset_size + 32 == self.size, "exact trailer")
        self.unread = self.table - 8

    def check_head(self, data):
        if self.since_seek == 0:
            self.token = data[0]
            require(self.token not in (0x00, 0x0F), "no null")
            wide = 0x14 < self.token <= 0x1F or 0x88 <= self.token <= 0x8F
            require(not wide, "64 bits")
        elif self.since_seek == 1 and self.token & 0xF == 0xF:
            if self.token & 0xF0 in self.WITH_COUNT:
                require(0x10 <= data[0] <= 0x13, "counts of integers")


def read_binary(data):
    try:
        root = reader.load(Watched(data), fmt=reader.FMT_BINARY, dict_type=Entries)
    except RecursionError:
        raise Refused("512 levels") from None
    return described(root)


# --- XML property lists ---

XML_SPACE = " \t\r\n"
INTEGER = re.compile(r"([+-]?)(?:0[xX]([0-9a-fA-F]+)|([0-9]+))")
DECIMAL = r"(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?"
REAL = re.compile(f"[+-]?(?:{DECIMAL}|(?i:nan|inf|infinity))")
DATE = re.compile(r"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z")
BASE64 = re.compile(r"(?:[A-Za-z0-9+/]{4})*(?:[A-Za-z0-9+/]{2}==|[A-Za-z0-9+/]{3}=)?")
ENCODINGS = {"UTF-8", "UTF-16", "UTF-16BE", "UTF-16LE", "ISO-8859-1", "US-ASCII"}
CONTAINERS = {"array", "dict"}
LEAVES = {"key", "string", "integer", "real", "date", "data", "true", "false"}


class Strict(reader._PlistParser):
    """plistlib's parser, with the rules asked before each of its steps."""

    def __init__(self, dict_type):
        super().__init__(dict_type)
        self.elements = []
        self.plists = 0
        self.roots = 0
        self.key_is_due = []

    def parse(self, fileobj):
        def watched(*arguments):
            parser = plistlib.ParserCreate(*arguments)
            parser.XmlDeclHandler = self.handle_declaration
            return parser

        reader.ParserCreate = watched
        return super().parse(fileobj)

    @staticmethod
    def handle_declaration(_version, encoding, _standalone):
        require(encoding is None or encoding.upper() in ENCODINGS, "known encodings")

    def handle_begin_element(self, element, attrs):
        require(element in CONTAINERS | LEAVES | {"plist"}, "known elements")
        require(not self.elements or self.elements[-1] not in LEAVES, "elements in their place")
        if element == "plist":
            self.plists += 1
            require(not self.elements and self.plists == 1, "elements in their place")
        elif not self.key_is_due:
            self.roots += 1
            require(element != "key" and self.roots == 1, "elements in their place")
        else:
            self.take_turn(element)
        self.elements.append(element)
        if element in CONTAINERS:
            require(len(self.key_is_due) < DEEPEST, "512 levels")
            self.key_is_due.append(element == "dict")
        super().handle_begin_element(element, attrs)

    def take_turn(self, element):
        due = self.key_is_due[-1]
        require(due == (element == "key"), "elements in their place")
        if due or self.elements[-1] == "dict":
            self.key_is_due[-1] = not due

    def handle_data(self, data):
        if self.elements[-1] not in LEAVES:
            require(not data.strip(XML_SPACE), "no text between")
        super().handle_data(data)

    def handle_end_element(self, element):
        self.elements.pop()
        if element in CONTAINERS:
            complete = self.key_is_due.pop() == (element == "dict")
            require(complete, "elements in their place")
        elif element in ("true", "false"):
            require(not self.get_data(), "elements in their place")
        super().handle_end_element(element)

    def end_integer(self):
        found = INTEGER.fullmatch(self.get_data().strip(XML_SPACE))
        require(found, "plain integers")
        # Longer than any of 64 bits without its zeros; Python refuses to look at very long ones.
        digits = (found[2] or found[3]).lstrip("0") or "0"
        require(len(digits) < 25, "64 bits")
        value = int(digits, 16 if found[2] else 10)
        self.add_object(-value if found[1] == "-" else value)

    def end_real(self):
        digits = self.get_data().strip(XML_SPACE)
        require(REAL.fullmatch(digits), "plain reals")
        value = float(digits)
        require(abs(value) != float("inf") or "i" in digits.lower(), "numbers in range")
        self.add_object(value)

    def end_date(self):
        digits = self.get_data().strip(XML_SPACE)
        require(DATE.fullmatch(digits), "whole dates")
        self.data = [digits]
        super().end_date()

    def end_data(self):
        digits = re.sub(f"[{XML_SPACE}]", "", self.get_data())
        require(BASE64.fullmatch(digits), "strict base 64")
        self.data = [digits]
        super().end_data()


def read_xml(data):
    return described(Strict(Entries).parse(io.BytesIO(without_leading_space(data))))


# --- old-style property lists ---

# What the octal escapes from 200 on mean.
NEXT_STEP = (
    "\u00a0ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖÙÚÛÜÝÞµ×÷©¡¢£⁄¥ƒ§¤’“«‹›ﬁﬂ®–†‡·¦¶•‚„”»…‰¬¿"
    "¹ˋ´ˆ˜¯˘˙¨²˚¸³˝˛ˇ—±¼½¾àáâãäåçèéêëìÆíªîïðñŁØŒºòóôõöæùúûıüýłøœßþÿ\ufffd\ufffd"
)

SKIPPED = re.compile(r"(?:[ \t\r\n\v\f]|//[^\r\n]*|/\*.*?\*/)*", re.S)
WORD = re.compile(r"[A-Za-z0-9_$/:.-]+")
QUOTED = re.compile(r"""(["'])((?:[^\\]|\\.)*?)\1""", re.S)
HEXADECIMAL = re.compile(r"<([0-9A-Fa-f \t\r\n\v\f]*)>")
ESCAPE = re.compile(r"\\(?:([0-7]{1,3})|U([0-9A-Fa-f]{0,4})|(.))", re.S)
LETTERS = dict(zip("abfnrtv", "\a\b\f\n\r\t\v"))


def escaped(found):
    octal, unicode, letter = found.groups()
    if octal:
        code = int(octal, 8) & 0xFF
        return chr(code) if code < 0x80 else NEXT_STEP[code - 0x80]
    return chr(int(unicode or "0", 16)) if unicode is not None else LETTERS.get(letter, letter)


class OldStyle:
    def __init__(self, document):
        self.document = document
        self.place = 0

    def skip(self):
        self.place = SKIPPED.match(self.document, self.place).end()
        require(not self.document.startswith("/*", self.place), "text grammar")

    def take(self, pattern):
        found = pattern.match(self.document, self.place)
        require(found, "text grammar")
        self.place = found.end()
        return found

    def take_if(self, sign):
        is_next = self.document.startswith(sign, self.place)
        self.place += len(sign) if is_next else 0
        return is_next

    def at_end(self):
        return self.place == len(self.document)

    def root(self):
        self.skip()
        if self.at_end():
            return Entries()
        value = self.value(0)
        self.skip()
        if not self.at_end():
            require(isinstance(value, str), "text grammar")
            self.place = 0
            self.skip()
            value = self.entries(1)
            require(self.at_end(), "text grammar")
        return value

    def value(self, depth):
        if self.document.startswith("<", self.place):
            digits = re.sub(r"[ \t\r\n\v\f]", "", self.take(HEXADECIMAL)[1])
            return bytes.fromhex(digits)
        brackets = self.document.startswith(("(", "{"), self.place)
        require(not brackets or depth < DEEPEST, "512 levels")
        if self.take_if("("):
            return self.array(depth + 1)
        if self.take_if("{"):
            entries = self.entries(depth + 1)
            require(self.take_if("}"), "text grammar")
            return entries
        return self.text()

    def text(self):
        if not self.document.startswith(("'", '"'), self.place):
            return self.take(WORD)[0]
        units = ESCAPE.sub(escaped, self.take(QUOTED)[2])
        # Two halves of a character, each escaped, are one.
        return units.encode("utf-16be", "surrogatepass").decode("utf-16be")

    def array(self, depth):
        values = []
        self.skip()
        while not self.take_if(")"):
            values.append(self.value(depth))
            self.skip()
            if self.take_if(","):
                self.skip()
            else:
                require(self.document.startswith(")", self.place), "text grammar")
        return values

    def entries(self, depth):
        found = Entries()
        self.skip()
        while not self.at_end() and not self.document.startswith("}", self.place):
            key = self.text()
            value = key
            self.skip()
            if self.take_if("="):
                self.skip()
                value = self.value(depth)
                self.skip()
            require(self.take_if(";"), "text grammar")
            found[key] = value
            self.skip()
        return found


def read_old_style(data):
    marks = {b"\xfe\xff": "utf-16be", b"\xff\xfe": "utf-16le"}
    encoding = marks.get(data[:2])
    document = data[2:].decode(encoding) if encoding else data.decode("utf-8-sig")
    return described(OldStyle(document).root())


# --- property lists of any form ---


def without_leading_space(data):
    return data.removeprefix(b"\xef\xbb\xbf").lstrip(b" \t\r\n")


def is_xml(data):
    start = data[2:] if data[:2] in (b"\xfe\xff", b"\xff\xfe") else data
    if start[:2] in (b"<\0", b"\0<"):
        return True
    start = without_leading_space(data)
    return start[:1] == b"<" and not re.match(rb"<[0-9A-Fa-f \t\r\n]*>", start)


def form(data):
    """Which of the three forms the data announces."""
    if data[:7] == b"bplist0" and len(data) >= 8:
        return "binary"
    return "xml" if is_xml(data) else "text"


FORMS = {"binary": read_binary, "xml": read_xml, "text": read_old_style}


def read_property_list(data):
    require(data, "some value")
    return FORMS[form(data)](data)


# --- cookie files ---


class Bytes:
    """A place in bytes, and a limit beyond which nothing may be read."""

    def __init__(self, data):
        self.data = data
        self.place = 0
        self.limit = len(data)
        self.is_sound = True

    def take(self, count):
        require(count <= self.limit - self.place, "cookie layout")
        taken = self.data[self.place : self.place + count]
        self.place += count
        return taken

    def numbers(self, layout):
        return struct.unpack(layout, self.take(struct.calcsize(layout)))

    def text(self):
        end = self.data.find(b"\0", self.place, self.limit)
        require(end >= 0, "cookie layout")
        taken = self.take(end + 1 - self.place)[:-1]
        require(taken.isascii(), "cookie layout")
        return taken

    def within(self, size, read):
        """Reads with a limit, unless the one around it is closer."""
        outer = self.limit
        self.limit = min(outer, self.place + size)
        found = read(self)
        self.limit = outer
        return found


FOOTER = bytes.fromhex("071720050000004b")
TEXTS = range(6)
OPTIONAL = (4, 5)


def read_cookie(data):
    start = data.place
    size, version, flags, has_port, *offsets = data.numbers("<10I")
    expiration, creation = data.numbers("<2d")
    port = data.numbers("<H")[0] if has_port == 1 else None
    texts = [None if field in OPTIONAL else b"" for field in TEXTS]
    for offset in sorted(offsets):
        if offset:
            # Of several fields with one offset the first one gets the text, and the last text.
            texts[offsets.index(offset)] = data.text()
    given = [offset for offset in offsets if offset]
    data.is_sound &= data.place - start == size and len(set(given)) == len(given)
    out = [number("i", value) for value in (size, version, flags, *offsets)]
    out.append(b"inone;" if port is None else number("i", port))
    out += [double("d", expiration), double("d", creation)]
    out += [b"n" if found is None else piece("s", found) for found in texts]
    return b"".join(out)


def read_page(data):
    require(data.take(4) == b"\0\0\1\0", "cookie layout")
    (count,) = data.numbers("<I")
    data.take(4 * count)
    require(data.take(4) == b"\0\0\0\0", "cookie layout")
    out = [b"[%d:" % count]
    for _ in range(count):
        ahead = data.data[data.place : min(data.place + 4, data.limit)]
        out.append(data.within(int.from_bytes(ahead, "little"), read_cookie))
    return b"".join(out)


def read_cookies(data):
    require(data.take(4) == b"cook", "cookie layout")
    (count,) = data.numbers(">I")
    sizes = struct.unpack(f">{count}I", data.take(4 * count))
    out = [b"[%d:" % count] + [data.within(size, read_page) for size in sizes]
    data.take(4)
    require(data.take(8) == FOOTER, "cookie layout")
    out.append(read_property_list(data.data[data.place :]))
    return b"".join(out)


def read_cookie_file(contents):
    return read_cookies(Bytes(contents))


READERS = {"j": read_json, "p": read_property_list, "c": read_cookie_file}


def view(letter, data):
    """The description, or None and why there is none."""
    try:
        return READERS[letter](data), ""
    except REFUSALS as error:
        # plistlib puts an error of its own in front of a rule's.
        refused = error.__context__ if isinstance(error.__context__, Refused) else error
        return None, f"{type(refused).__name__}: {refused}"


# --- what the library writes ---


def is_sound_cookie_file(contents):
    """Whether every cookie is as long as it says, so that it can be written as it was read."""
    data = Bytes(contents)
    read_cookies(data)
    return data.is_sound


def has_right_checksum(contents):
    (count,) = struct.unpack_from(">I", contents, 4)
    start = 8 + 4 * count
    total = 0
    for size in struct.unpack_from(f">{count}I", contents, 8):
        total += sum(contents[start : start + size : 4])
        start += size
    return contents[start : start + 4] == struct.pack(">I", total & 0xFFFFFFFF)


def is_well_written(letter, data, description, written):
    """Whether what the library wrote for an input is the same value, by Python's readers."""
    if letter == "j":
        return written == b""
    if letter == "p":
        return written[:8] == b"bplist00" and view("p", written)[0] == description
    if not is_sound_cookie_file(data):
        return True
    return view("c", written)[0] == description and has_right_checksum(written)
