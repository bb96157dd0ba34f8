"""Where the library's readers differ from Python's on purpose. Whatever else differs is a finding.

Each rule makes Python's reader refuse what it would take. A rule whose name is given to `Refused`
and that does not stand here is an error of this program.
"""

RULES = {
    # JSON
    "JSON in UTF-8": "RFC 8259 allows nothing else; Python also guesses UTF-16 and UTF-32",
    "no constants": "NaN and Infinity are no JSON",
    "whole characters": "an escaped surrogate without its other half is no Unicode",
    "numbers in range": "a number beyond the doubles is an error; Python makes it infinite or long",
    "512 levels": "nobody nests deeper than the platform allows; Python has no fixed limit",
    # binary property lists
    "exact trailer": "table and trailer fill the file's end, with sizes of 1 to 8 bytes",
    "objects in their place": "objects lie whole between the header and the table",
    "objects apart": "objects do not overlap, or a small file could be read as a huge one",
    "counts of integers": "a count is an integer of 1, 2, 4 or 8 bytes; Python ignores the rest",
    "no null": "null and fill bytes are no values of a property list",
    "64 bits": "integers lie between -2^63 and 2^64-1 and take up to 16 bytes, references up to 8",
    "keys are texts": "Python takes everything that it can hash",
    "no cycles": "an object that contains itself has no end",
    # XML property lists
    "known elements": "Python ignores what it does not know",
    "elements in their place": "one value, keys and values in turn, nothing within scalars",
    "no text between": "Python ignores text that is no value's",
    "known encodings": "those of XML itself and Latin-1; Python knows every one of 8 bits",
    "plain integers": "ASCII digits and a sign; Python takes underscores and other digits",
    "plain reals": "the same",
    "whole dates": "Python takes dates without a time, and with anything behind them",
    "strict base 64": "Python drops what is not of the alphabet",
    # property lists without a form
    "some value": "a document without any value is none",
    # text property lists and cookie files have readers of this folder's own, which have the
    # library's rules already
    "text grammar": "words, texts in quotes, lists, dictionaries and data, with comments",
    "cookie layout": "the tables of docs/formats.md",
}


# Where the library may do the one or the other.
UNDECIDED = {
    "bounded growth": "references to shared containers multiply; the limit depends on the file",
}


class Refused(ValueError):
    """What a rule forbids."""

    def __init__(self, rule):
        assert rule in RULES, rule
        super().__init__(rule)
        self.rule = rule


def require(holds, rule):
    if not holds:
        raise Refused(rule)


class Undecided(Exception):
    """What no rule decides."""

    def __init__(self, rule):
        assert rule in UNDECIDED, rule
        super().__init__(rule)
