"""What other package managers read says the same as CMake's files."""

import json
import re
import shutil
import subprocess

from support import ROOT, ScriptTest

SWIFT = (ROOT / "Package.swift").read_text("utf-8")
FORMULA = ROOT / "packaging" / "homebrew" / "browsersweep.rb"
LIBRARY = ROOT / "browsersweep"


def version():
    return re.search(r"^  VERSION (\S+)$", (ROOT / "CMakeLists.txt").read_text("utf-8"), re.M)[1]


def folders_that_cmake_leaves_out():
    """The folders of other systems and backends, on macOS and elsewhere: CMake compiles all others."""
    text = (LIBRARY / "CMakeLists.txt").read_text("utf-8")
    systems = set(re.search(r"set\(browsersweep_systems ([^)]*)\)", text)[1].split())
    place = re.search(r'EXCLUDE REGEX "/(.*)/\(\$\{browsersweep_systems\}\)/"', text)[1]
    macos = {"darwin", "foundation"}
    left_out = {"macOS": systems - macos, "elsewhere": macos}
    return {system: {f"{place}/{name}" for name in names} for system, names in left_out.items()}


def folders_that_swift_leaves_out():
    lists = re.findall(r"^let otherSystems = \[(.*)\]$", SWIFT, re.M)
    folders = [set(re.findall(r'"([^"]+)"', row)) for row in lists]
    return dict(zip(("macOS", "elsewhere"), folders))


def settings_of(preset):
    """The variables of a preset, with those that it inherits."""
    rows = json.loads((ROOT / "CMakePresets.json").read_text("utf-8"))["configurePresets"]
    row = next(row for row in rows if row["name"] == preset)
    inherited = settings_of(row["inherits"]) if "inherits" in row else {}
    return {**inherited, **row.get("cacheVariables", {})}


class Presets(ScriptTest):
    def test_what_users_build_needs_no_test_library_and_stops_at_no_warning(self):
        for preset in ("release", "demo", "macos-universal"):
            with self.subTest(preset):
                settings = settings_of(preset)
                self.assertEqual(settings["BROWSERSWEEP_BUILD_TESTS"], "OFF")
                self.assertNotIn("BROWSERSWEEP_WARNINGS_AS_ERRORS", settings)

    def test_a_release_takes_the_header_form_of_fmt(self):
        # The compiled one of Homebrew is a library of one processor that other Macs lack.
        for preset in ("release", "macos-universal"):
            self.assertNotIn("BROWSERSWEEP_FMT", settings_of(preset))
        self.assertIn("set(BROWSERSWEEP_FMT fmt::fmt-header-only\n",
                      (ROOT / "cli" / "CMakeLists.txt").read_text("utf-8"))

    def test_warnings_are_errors_where_developers_build(self):
        for preset in ("debug", "clang", "asan", "foundation", "shared", "libcxx", "bench", "tidy"):
            self.assertEqual(settings_of(preset)["BROWSERSWEEP_WARNINGS_AS_ERRORS"], "ON", preset)


class SwiftPackage(ScriptTest):
    def test_it_compiles_the_folders_that_cmake_compiles(self):
        self.assertEqual(folders_that_swift_leaves_out(), folders_that_cmake_leaves_out())

    def test_it_leaves_out_the_sites_as_cmake_does_without_their_libraries(self):
        text = (LIBRARY / "CMakeLists.txt").read_text("utf-8")
        place = re.search(r"if\(NOT BROWSERSWEEP_SITES\)\n.* EXCLUDE REGEX \"/browsersweep(.*)\"\)", text)[1]
        folders = {str(path.relative_to(LIBRARY)) for path in LIBRARY.rglob("*")
                   if path.is_dir() and re.fullmatch(place, f"/{path.relative_to(LIBRARY)}/")}
        self.assertEqual(folders, {"sites", "hosting/sites", "traces"})
        rooms = re.search(r"^let rooms = \[(.*)\]$", SWIFT, re.M)[1]
        self.assertEqual(set(re.findall(r'"([^"]+)"', rooms)), folders)

    def test_what_it_leaves_out_is_there(self):
        for name in re.findall(r'"(platform/[\w/]+)"', SWIFT) + ["CMakeLists.txt", "c/module.modulemap"]:
            self.assertTrue((LIBRARY / name).exists(), name)

    def test_its_version_is_the_projects(self):
        self.assertEqual(re.findall(r'\.define\("BROWSERSWEEP_VERSION", to: "\\"(.*)\\""\)', SWIFT), [version()])

    def test_the_module_needs_no_header_outside_its_reach(self):
        # Who imports the module searches its own folder alone.
        if shutil.which("clang") is None:
            self.skipTest("clang is not installed")
        source = self.folder / "module.m"
        source.write_text("@import browsersweep;\nconst char *version(void) "
                          "{ return browsersweep_version(); }\n", encoding="utf-8")
        for headers in (LIBRARY / "c", self.xcframework_headers()):
            with self.subTest(headers=headers):
                command = ["clang", "-x", "objective-c", "-fmodules", "-fsyntax-only", "-Wall", "-Werror"]
                command += [f"-fmodules-cache-path={self.folder}/modules", "-I", headers, source]
                finished = subprocess.run(command, stderr=subprocess.PIPE, text=True, check=False)
                self.assertEqual((finished.returncode, finished.stderr), (0, ""))

    def test_its_notes_name_what_the_header_declares(self):
        notes = (LIBRARY / "c" / "browsersweep.apinotes").read_text("utf-8")
        header = (LIBRARY / "c" / "browsersweep.h").read_text("utf-8")
        names = re.findall(r"^- Name: (\w+)$", notes, re.M)
        self.assertEqual([name for name in names if not re.search(rf"\b{name}\b", header)], [])
        enumerators = set(re.findall(r"^    (BROWSERSWEEP_\w+) = \d+,? ", header, re.M))
        unnamed = enumerators - set(names) - {"BROWSERSWEEP_IGNORE_ERRORS", "BROWSERSWEEP_STRICT"}
        self.assertEqual(unnamed, set())

    def test_clang_understands_its_notes(self):
        compiler = next(filter(shutil.which, ["clang-19", "clang-18", "clang"]), None)
        source = self.folder / "notes.m"
        source.write_text("@import browsersweep;\n", encoding="utf-8")
        command = [compiler or "", "-x", "objective-c", "-fmodules", "-fapinotes-modules", "-fsyntax-only",
                   f"-fmodules-cache-path={self.folder}/notes"]
        tried = compiler and subprocess.run([*command, "-"], input="", stderr=subprocess.PIPE, text=True,
                                            check=False)
        if not tried or tried.returncode != 0:
            self.skipTest("no clang that reads notes")
        finished = subprocess.run([*command, "-I", LIBRARY / "c", source], stderr=subprocess.PIPE, text=True,
                                  check=False)
        self.assertEqual((finished.returncode, finished.stderr), (0, ""))

    def xcframework_headers(self):
        """The folder of headers as scripts/release lays it out."""
        folder = self.folder / "headers"
        for name in ("Export.h", "c/browsersweep.h"):
            (folder / "browsersweep" / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(LIBRARY / name, folder / "browsersweep" / name)
        shutil.copy(ROOT / "packaging" / "xcframework" / "module.modulemap", folder / "browsersweep")
        return folder


class HomebrewFormula(ScriptTest):
    def test_it_is_ruby(self):
        if shutil.which("ruby") is None:
            self.skipTest("ruby is not installed")
        finished = subprocess.run(["ruby", "-c", FORMULA], stdout=subprocess.PIPE, check=False)
        self.assertEqual(finished.returncode, 0)

    def test_it_asks_for_what_building_needs(self):
        text = FORMULA.read_text("utf-8")
        wanted = re.search(r'^macos_build="([^"]*)"$', (ROOT / "scripts/lib/packages.sh").read_text(), re.M)[1]
        asked = set(re.findall(r'depends_on "([^"]+)"', text))
        self.assertEqual(asked, set(wanted.split()) - {"ccache"})

    def test_it_has_the_form_that_homebrew_asks_for(self):
        """As far as that can be said without Homebrew."""
        text = FORMULA.read_text("utf-8")
        stanzas = re.findall(r"^  (desc|homepage|url|sha256|license|depends_on|uses_from_macos|def install"
                             r"|test do)\b", text, re.M)
        order = ["desc", "homepage", "url", "sha256", "license", "depends_on", "uses_from_macos",
                 "def install", "test do"]
        self.assertEqual(stanzas, sorted(stanzas, key=order.index))
        needs = re.findall(r'^  depends_on "?([\w-]+)"?(?:: :\w+)?( => :build)?$', text, re.M)
        self.assertEqual(len(needs), stanzas.count("depends_on"))
        self.assertEqual(needs, sorted(needs, key=lambda need: (not need[1], need[0])))
        described = re.search(r'^  desc "(.*)"$', text, re.M)[1]
        self.assertRegex(described, r"^(?!An? |The |Browsersweep)[A-Z].{0,78}[^.]$")
        self.assertEqual([line for line in text.splitlines() if len(line) > 118 or line != line.rstrip()], [])

    def test_its_options_are_the_projects(self):
        options = (ROOT / "CMakeLists.txt").read_text("utf-8")
        for name in re.findall(r'"-D(BROWSERSWEEP_\w+)=', FORMULA.read_text("utf-8")):
            self.assertIn(f"option({name} ", options)
