"""scripts/release, with stand-ins for the commands of macOS and for the build."""

import re
import shutil

from support import ROOT, ScriptTest

SYSTEMS_OWN = "/usr/lib/libsqlite3.dylib /usr/lib/libc++.1.dylib /System/Library/Foundation"
IDENTITY = "Developer ID Application: Somebody (TEAM)"
SIGNED = ("--sign", IDENTITY, "--notarize", "profile")
URL = "https://example.org/releases"

# What a real run does besides: nothing of it changes what is made.
TOOLS = "cmake lipo otool codesign ditto xcodebuild xcrun git shasum"

INSTALL = """
case $1 in --install)
    mkdir -p "$4/bin" "$4/lib" "$4/include/browsersweep/c"
    : >"$4/lib/libbrowsersweep.a"
    : >"$4/include/browsersweep/c/module.modulemap"
    : >"$4/include/browsersweep/c/browsersweep.apinotes"
    printf '#!/bin/sh\\n' >"$4/bin/browsersweep"
    chmod +x "$4/bin/browsersweep"
    ;;
esac
"""

DITTO = """
case $1 in
-c) : >"$5" ;;
*) cp -R "$1" "$2" ;;
esac
"""


class ReleaseTest(ScriptTest):
    """A copy of what the script reads, and the commands that it is given."""

    def setUp(self):
        super().setUp()
        self.project = self.folder / "project"
        shutil.copytree(ROOT / "scripts", self.project / "scripts")
        shutil.copytree(ROOT / "packaging", self.project / "packaging")
        shutil.copy(ROOT / "CMakeLists.txt", self.project)
        self.borrow("bash", "env", "dirname", "basename", "sed")
        self.stand_in("uname", "echo Darwin", records=False)
        text = (ROOT / "CMakeLists.txt").read_text("utf-8")
        self.version = re.search(r"^  VERSION (\S+)$", text, re.M)[1]

    def release(self, *arguments):
        return self.run_script(self.project / "scripts" / "release", *arguments)

    def commands_of(self, finished):
        """The commands that a run has shown, without quotes."""
        shown = [line[2:] for line in finished.stdout.splitlines() if line.startswith("$ ")]
        return [line.replace("\\", "") for line in shown]

    def dry_run(self, *arguments):
        finished = self.release("--dry-run", *arguments)
        self.assertEqual((finished.returncode, finished.stderr), (0, ""))
        return self.commands_of(finished)


class DryRun(ReleaseTest):
    """With nothing in reach that a release needs."""

    def test_it_runs_on_any_system_and_makes_nothing(self):
        self.stand_in("uname", "echo Linux", records=False)
        before = sorted(self.project.rglob("*"))
        commands = self.dry_run(*SIGNED, "--url", URL)
        self.assertEqual(sorted(self.project.rglob("*")), before)
        self.assertGreater(len(commands), 25)

    def test_the_library_is_built_static_and_shared_for_both_processors(self):
        commands = self.dry_run()
        configured = [line for line in commands if line.startswith("cmake --preset")]
        self.assertEqual(
            configured,
            [
                "cmake --preset macos-universal -B build/macos-universal-static",
                "cmake --preset macos-universal -B build/macos-universal-shared "
                "-DBUILD_SHARED_LIBS=ON -DBROWSERSWEEP_BUILD_CLI=OFF",
            ],
        )
        verified = [line.split()[1] for line in commands if line.endswith("-verify_arch arm64 x86_64")]
        self.assertEqual(
            [path.rsplit("/", 1)[1] for path in verified],
            ["browsersweep", f"libbrowsersweep.{self.version}.dylib", "libbrowsersweep.a"],
        )

    def test_without_an_identity_nothing_is_signed(self):
        tools = {line.split()[0] for line in self.dry_run()}
        self.assertTrue({"cmake", "lipo", "otool", "xcodebuild", "ditto", "shasum"} <= tools)
        self.assertFalse({"codesign", "xcrun"} & tools)

    def test_programs_are_signed_under_the_hardened_runtime_before_they_are_packed(self):
        commands = self.dry_run(*SIGNED)
        signed = [line for line in commands if line.startswith("codesign --force")]
        self.assertEqual(["--options runtime" in line for line in signed], [True, True, False])
        for line in signed:
            self.assertIn("--timestamp", line)
            self.assertIn(f"--sign {IDENTITY} ", line)
        packed = [line for line in commands if line.startswith("ditto -c")]
        self.assertLess(max(map(commands.index, signed)), min(map(commands.index, packed)))

    def test_what_was_packed_is_notarized(self):
        submitted = [line for line in self.dry_run(*SIGNED) if line.startswith("xcrun notarytool")]
        folder = f"build/dist/browsersweep-{self.version}"
        self.assertEqual(
            submitted,
            [
                f"xcrun notarytool submit {folder}-{kind}.zip --keychain-profile profile --wait"
                for kind in ("macos", "macos-shared")
            ],
        )

    def test_every_file_that_is_published_has_a_checksum(self):
        commands = self.dry_run()
        made = {line.split()[-1] for line in commands if line.startswith("ditto -c")}
        made |= set(re.findall(r"--output=(\S+)", "\n".join(commands)))
        summed = commands[-1].removesuffix(" > SHA256SUMS").split()[3:]
        self.assertEqual({path.rsplit("/", 1)[1] for path in made}, set(summed))


class Refusals(ReleaseTest):
    def test_a_release_is_made_on_a_mac(self):
        self.stand_in("uname", "echo Linux", records=False)
        finished = self.release()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("--dry-run shows the commands", finished.stderr)

    def test_notarizing_needs_a_signature(self):
        finished = self.release("--dry-run", "--notarize", "profile")
        self.assertEqual(finished.returncode, 1)
        self.assertIn("--notarize needs --sign", finished.stderr)

    def test_an_option_needs_its_value(self):
        for option in ("--sign", "--notarize", "--url"):
            with self.subTest(option):
                finished = self.release("--dry-run", option)
                self.assertEqual(finished.returncode, 1)
                self.assertIn(f"{option} needs a value", finished.stderr)

    def test_an_unknown_argument_is_refused(self):
        self.assertEqual(self.release("--everything").returncode, 2)


class OnAMac(ReleaseTest):
    def setUp(self):
        super().setUp()
        self.borrow(*"rm mkdir mv cp cut chmod awk grep".split())
        self.stand_in("cmake", INSTALL)
        self.stand_in("ditto", DITTO)
        self.loads(SYSTEMS_OWN)
        self.stand_in("lipo")
        self.stand_in("codesign")
        self.stand_in("xcodebuild", 'mkdir "$7"')
        self.stand_in("xcrun", "echo '  status: Accepted'")
        self.stand_in("git", 'case $1 in archive) : >"${4#--output=}" ;; esac')
        self.stand_in("shasum", 'for file in "${@:3}"; do echo "0123abc  $file"; done')

    def loads(self, libraries):
        lines = "; ".join(f"printf '\\t%s (compatibility version 1)\\n' {name}" for name in libraries.split())
        self.stand_in("otool", f'echo "$2 (architecture arm64):"; {lines}')

    def test_a_real_run_runs_what_a_dry_run_shows(self):
        shown = self.dry_run(*SIGNED, "--url", URL)
        finished = self.release(*SIGNED, "--url", URL)
        self.assertEqual(finished.returncode, 0, finished.stdout + finished.stderr)
        ran = self.commands_of(finished)
        self.assertEqual(ran, [line.replace("CHECKSUM", "0123abc") for line in shown])
        for tool in TOOLS.split():
            wanted = [line.split(" > ")[0] for line in ran if line.startswith(tool + " ")]
            calls = [f"{tool} {call}" for call in self.recorded(tool)]
            if tool == "shasum":  # once more, for the formula
                calls = calls[1:]
            self.assertEqual(calls, wanted)

    def test_it_leaves_the_files_that_are_published(self):
        self.assertEqual(self.release("--url", URL).returncode, 0)
        name = f"browsersweep-{self.version}"
        files = {f"{name}-macos.zip", f"{name}-macos-shared.zip", f"{name}.xcframework.zip"}
        files |= {f"{name}.tar.gz", "browsersweep.rb", "SHA256SUMS"}
        made = self.project / "build" / "dist"
        self.assertEqual({path.name for path in made.iterdir()}, files)
        self.assertEqual(len((made / "SHA256SUMS").read_text().splitlines()), 4)

    def test_the_formula_names_the_sources_and_their_checksum(self):
        self.assertEqual(self.release("--url", URL).returncode, 0)
        text = (self.project / "build/dist/browsersweep.rb").read_text("utf-8")
        self.assertIn(f'url "{URL}/browsersweep-{self.version}.tar.gz"', text)
        self.assertIn('sha256 "0123abc"', text)
        self.assertNotIn("@", text.split("class Browsersweep")[1])

    def test_a_program_that_needs_homebrew_is_not_released(self):
        self.loads(SYSTEMS_OWN + " /opt/homebrew/opt/fmt/lib/libfmt.12.dylib")
        finished = self.release()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("needs what a Mac may not have: /opt/homebrew/opt/fmt/lib/libfmt.12.dylib",
                      finished.stderr)
        self.assertEqual(self.recorded("ditto"), [])

    def test_a_program_for_one_processor_is_not_released(self):
        self.stand_in("lipo", "exit 1")
        finished = self.release()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("is not made for both processors", finished.stderr)

    def test_what_apple_refuses_is_not_released(self):
        for answer in ("echo '  status: Invalid'", "echo 'status: Accepted'; exit 1"):
            with self.subTest(answer):
                self.stand_in("xcrun", answer)
                finished = self.release(*SIGNED)
                self.assertEqual(finished.returncode, 1)
                self.assertIn("Apple has not accepted", finished.stderr)
                self.assertFalse((self.project / "build/dist/SHA256SUMS").exists())

    def test_changes_that_are_not_committed_are_not_released(self):
        self.stand_in("git", "exit 1")
        finished = self.release()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("changes that are not committed", finished.stderr)
        self.assertEqual(self.recorded("cmake"), [])

    def test_a_failing_step_ends_it(self):
        for tool in ("cmake", "codesign", "xcodebuild", "ditto"):
            with self.subTest(tool):
                before = (self.commands / tool).read_text()
                self.stand_in(tool, "exit 3")
                self.assertEqual(self.release(*SIGNED).returncode, 3)
                (self.commands / tool).write_text(before)
