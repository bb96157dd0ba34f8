"""The syntax tree of a file, as clang++ prints it."""

import json
import pathlib
import subprocess


class Source:
    """A file's text with a character for each byte, so that the offsets of clang++ count in it."""

    def __init__(self, path):
        self.path = pathlib.Path(path).resolve()
        self.text = self.path.read_text(encoding="latin-1")

    def line_of(self, offset):
        return self.text.count("\n", 0, offset) + 1


def trees(source, root, options):
    """The namespaces of the project with all that a file and what it includes declare in them."""
    language = ["-x", "c++"] if source.path.suffix == ".h" else []
    printed = subprocess.run(
        ["clang++", *options, "-w", "-fsyntax-only", "-Xclang", "-ast-dump=json",
         "-Xclang", "-ast-dump-filter=browsersweep", *language, str(source.path)],
        cwd=root, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    if printed.returncode != 0:
        raise RuntimeError(printed.stderr.decode(errors="replace"))
    return list(documents(printed.stdout.decode("utf-8", errors="replace")))


def documents(text):
    decoder, position = json.JSONDecoder(), text.find("{")
    found = []
    while position >= 0:
        tree, end = decoder.raw_decode(text, position)
        found.append(tree)
        position = text.find("{", end)
    for tree in found:
        name_files(tree, [None])
        yield tree


def name_files(value, last):
    """Gives each location its file: clang++ names a file only where it is another than before."""
    if isinstance(value, list):
        for each in value:
            name_files(each, last)
        return
    if "offset" in value and "tokLen" in value:
        last[0] = value.get("file", last[0])
        value["in"] = last[0]
        return
    for each in value.values():
        if isinstance(each, (dict, list)):
            name_files(each, last)


def enumerators(tree_list):
    """The identity of each enumerator -> the name of another one of its type."""
    others = {}
    for tree in tree_list:
        pending = [tree]
        while pending:
            node = pending.pop()
            children = node.get("inner", ())
            if node.get("kind") == "EnumDecl":
                own = [each for each in children if each.get("kind") == "EnumConstantDecl"]
                for index, each in enumerate(own if len(own) > 1 else ()):
                    others[each["id"]] = own[(index + 1) % len(own)]["name"]
            pending.extend(children)
    return others
