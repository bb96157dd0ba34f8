"""Compiles the changed sources, gives up the mutants that do not compile, and links the tests with them."""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess

OWN = pathlib.Path(__file__).resolve().parent / "runtime"
LEFT_OUT = re.compile(r"^-(W.*|Winvalid-pch)$")
PASSES = 12
PLACE = re.compile(r"^(\S+?):(\d+):(\d+):\s+(.*)$")


def diagnostics(text):
    """Each error of g++ with the places that it names: its own, where it was needed, and its notes."""
    message, own, before = None, [], []
    for line in text.splitlines():
        found = PLACE.match(line)
        if not found:
            continue
        place = (found[1], int(found[2]), int(found[3]))
        if re.match(r"(fatal )?error: ", found[4]):
            if message:
                yield message, own
            message, own, before = found[4], [place, *before], []
        elif "required " in found[4] or "in 'constexpr' expansion" in found[4]:
            before.append(place)
        else:
            own.append(place)
    if message:
        yield message, own


class Build:
    """The debug build `debug` of the project at `root`, and a folder for what is made of it."""

    def __init__(self, root, debug, folder, jobs, say):
        self.root, self.debug, self.folder, self.jobs, self.say = root, debug, folder, jobs, say
        self.tree = folder / "tree"
        listed = json.loads((debug / "compile_commands.json").read_text(encoding="utf-8"))
        self.commands = {os.path.relpath(each["file"], root): shlex.split(each["command"])
                         for each in listed}
        self.launcher = [shutil.which("ccache")] if shutil.which("ccache") else []
        self.schemas = {}
        self.kind = ""

    def options(self):
        """What clang++ needs to know to read a file of the library."""
        command = next(each for name, each in self.commands.items()
                       if name.startswith("browsersweep/sqlite/"))
        return [each for each in command if re.match(r"-(D|I|std)", each)]

    def command(self, name, source, output):
        given = list(self.commands[name])
        if os.path.basename(given[0]) == "ccache":
            given.pop(0)
        given = [each for each in given if not LEFT_OUT.match(each)]
        given[given.index("-o") + 1] = str(output)
        given[given.index("-c") + 1] = str(source)
        # The folders of changed files come before all others.
        return [given[0], "-w", "-Wno-narrowing", f"-I{self.tree}", self.kind, "-include",
                str(OWN / "Mutation.h"), *given[1:]]

    # Files.

    def write(self, schema):
        path = self.tree / schema.path
        path.parent.mkdir(parents=True, exist_ok=True)
        data = schema.text.encode("latin-1")
        if not path.is_file() or path.read_bytes() != data:
            path.write_bytes(data)

    def build(self, schemas, program):
        """Links the tests with the changed files."""
        self.schemas = {str(each.path): each for each in schemas}
        shutil.rmtree(self.tree, ignore_errors=True)
        for schema in schemas:
            self.write(schema)
        headers = {name for name in self.schemas if name.endswith(".h")}
        # The compiler's cache looks at the headers that a file has used, and not at whether another one
        # lies before them by now.
        names = " ".join(sorted(headers)).encode()
        self.kind = f"-DBROWSERSWEEP_CHANGED_HEADERS={hashlib.sha256(names).hexdigest()}"
        sources = sorted(self.schemas.keys() - headers) + self.affected(headers)
        self.compile(sorted(headers), sources)
        self.link(sources, program)

    def affected(self, headers):
        """The sources that see a changed header in its own room: of the library and of its tests."""
        if not headers:
            return []
        listed = subprocess.run(["ninja", "-C", self.debug, "-t", "deps"], text=True, check=True,
                                stdout=subprocess.PIPE).stdout
        made = {each[each.index("-o") + 1]: name for name, each in self.commands.items()}
        found = set()
        for block in listed.split("\n\n"):
            output, *files = block.strip().splitlines() or [""]
            name = made.get(output.split(":")[0])
            if name and name not in self.schemas:
                seen = headers.intersection(
                    os.path.relpath(self.debug / each.strip(), self.root) for each in files)
                if name.split("/")[1] in {each.split("/")[1] for each in seen}:
                    found.add(name)
        return sorted(found)

    def object_of(self, name):
        return self.folder / "objects" / (name + ".o")

    def compile_one(self, name):
        """Nothing where a file compiles, else what g++ says of it."""
        changed = self.tree / name
        source = changed if changed.is_file() else self.root / name
        if name.endswith(".h"):
            base = next(each for each in self.commands if each.startswith("browsersweep/sqlite/"))
            command = self.command(base, source, os.devnull) + ["-x", "c++"]
            command.insert(command.index("-c"), "-fsyntax-only")
            command = command[:command.index(str(source))] + ["-x", "c++", str(source)]
            return self.diagnosed(command)
        output = self.object_of(name)
        output.parent.mkdir(parents=True, exist_ok=True)
        command = self.command(name, source, output)
        made = subprocess.run(self.launcher + command, cwd=self.debug, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        return None if made.returncode == 0 else self.diagnosed([*command, "-fsyntax-only"])

    def diagnosed(self, command):
        said = subprocess.run(command, cwd=self.debug, check=False, text=True, errors="replace",
                              env={**os.environ, "LC_ALL": "C"},
                              stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        return None if said.returncode == 0 else list(diagnostics(said.stderr))

    def compile(self, headers, sources):
        pending = [headers, sources]
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            for names in pending:
                for _ in range(PASSES):
                    failed = {name: said for name, said in
                              zip(names, pool.map(self.compile_one, names)) if said is not None}
                    if not failed:
                        break
                    self.say(f"{len(names)} files compiled, {len(failed)} with mutants that do not")
                    self.give_up(failed)
                    names = sorted(failed)
                else:
                    raise RuntimeError(f"these do not compile: {' '.join(names)}")

    def give_up(self, failed):
        for name, said in failed.items():
            # Most others follow from a table that the compiler needs itself.
            first = [each for each in said if "constant expression" in each[0]] or said
            if not any([self.blame(each) for each in first]):
                raise RuntimeError(f"{name} does not compile: {said[:3]}")
        for schema in self.schemas.values():
            schema.write()
            self.write(schema)

    def blame(self, diagnostic):
        """Gives up the mutants that an error comes from; whether there are any."""
        message, places = diagnostic
        spots = {}
        for path, line, column in places:
            name = os.path.relpath(os.path.join(self.debug, path), self.tree)
            spots.setdefault(name, []).append((line, column))
        for name, own in spots.items():
            if name in self.schemas:
                schema = self.schemas[name]
                numbers = "constant expression" in message and schema.tables_named(own)
                numbers = numbers or schema.blamed(own)
                schema.refuse(numbers, message)
                if numbers:
                    return True
        return False

    def link(self, sources, program):
        runtime = self.object_of("Mutation.cpp")
        base = next(each for each in sorted(self.commands) if each.startswith("tests/cleanable/"))
        subprocess.run(self.launcher + self.command(base, OWN / "Mutation.cpp", runtime),
                       cwd=self.debug, check=True)
        listed = subprocess.run(["ninja", "-C", self.debug, "-t", "commands",
                                 "tests/browsersweep_tests"], text=True, check=True,
                                stdout=subprocess.PIPE).stdout.splitlines()[-1]
        command = shlex.split(listed.replace(": && ", "", 1).rsplit(" && ", 1)[0])
        command[command.index("-o") + 1] = str(program)
        replaced = {}
        for name in sources:
            original = self.commands[name][self.commands[name].index("-o") + 1]
            replaced[original] = str(self.object_of(name))
        # What is linked first decides: an inline function of a changed header is the changed one.
        changed = [str(self.object_of(each)) for each in sources]
        rest = [each for each in command[1:] if each not in replaced]
        subprocess.run([command[0], *changed, str(runtime), *rest], cwd=self.debug, check=True)
