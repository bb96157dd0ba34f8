"""The scripts use only what the tools of macOS and of Debian have in common."""

import re
import shutil
import subprocess

from support import ROOT, ScriptTest, package_list

# What bash 3.2 or the BSD tools lack, as a pattern on one line of a script.
LACKING = {
    "stat -c": r"\bstat\s+(-\w+\s+)*-c\b",
    "the /proc folder": r"/proc/",
    "sed -i": r"\bsed\b[^|]*\s-i\b",
    "readlink -f": r"\breadlink\s+-\w*f",
    "realpath": r"\brealpath\b",
    "date -d": r"\bdate\b[^|]*\s(-d|--date)\b",
    "grep -P": r"\bgrep\s+(-\w+\s+)*-\w*P",
    "xargs -r": r"\bxargs\s+(-\w+\s+)*-\w*r\b",
    "find -printf": r"\bfind\b.*-printf\b",
    "sort -V": r"\bsort\s+(-\w+\s+)*-\w*V",
    "head with a negative count": r"\bhead\s+-n\s*-\d",
    "timeout": r"(^|[;&|(]\s*|\bthen\s+|\bdo\s+)timeout\s",
    "mapfile": r"\b(mapfile|readarray)\b",
    "associative arrays": r"\bdeclare\s+-\w*A|\blocal\s+-\w*A",
    "case conversion in expansions": r"\$\{\w+(,,?|\^\^?)\}",
    "&>>": r"&>>",
    "|&": r"\|&",
    "a long option of a basic tool": r"\b(cp|mv|rm|ls|mkdir|touch|sort|mktemp)\s+--[a-z]",
}


def shell_files():
    script = f'. "{ROOT}/scripts/lib/common.sh"; shell_files'
    output = subprocess.run(["bash", "-c", script], stdout=subprocess.PIPE, text=True, check=True)
    return output.stdout.splitlines()


def code_of(line):
    """The line without a comment that stands alone on it."""
    return "" if line.lstrip().startswith("#") else line


class Portability(ScriptTest):
    def test_no_script_uses_what_macos_lacks(self):
        files = shell_files()
        self.assertIn("scripts/setup", files)
        found = []
        for name in files:
            lines = (ROOT / name).read_text(encoding="utf-8").splitlines()
            for number, line in enumerate(lines, 1):
                for what, pattern in LACKING.items():
                    if re.search(pattern, code_of(line)):
                        found.append(f"{name}:{number}: {what}")
        self.assertEqual(found, [])

    def test_every_pattern_finds_what_it_is_for(self):
        examples = {
            "stat -c": "stat -c %s file",
            "the /proc folder": "cat /proc/cpuinfo",
            "sed -i": "sed -i s/a/b/ file",
            "readlink -f": "readlink -f file",
            "realpath": "realpath file",
            "date -d": "date -u -d yesterday",
            "grep -P": "grep -oP x",
            "xargs -r": "xargs -0 -r rm",
            "find -printf": "find . -printf %p",
            "sort -V": "sort -V",
            "head with a negative count": "head -n -1",
            "timeout": "timeout 5 sleep 9",
            "mapfile": "mapfile -t lines",
            "associative arrays": "declare -A map",
            "case conversion in expansions": "echo ${name,,}",
            "&>>": "make &>>log",
            "|&": "make |& tee log",
            "a long option of a basic tool": "cp --archive a b",
        }
        self.assertEqual(set(examples), set(LACKING))
        for what, line in examples.items():
            with self.subTest(what):
                self.assertRegex(line, LACKING[what])


class CommonFunctions(ScriptTest):
    """The functions of scripts/lib/common.sh with the commands of macOS."""

    def setUp(self):
        super().setUp()
        self.borrow("bash", "dirname", "basename", "env", "mktemp", "mkdir", "chmod", "rm")
        self.stand_in("uname", "echo Darwin", records=False)

    def common(self, text):
        lines = f'. "{ROOT}/scripts/lib/common.sh"; {text}'
        return self.run_script(self.commands / "bash", "-c", lines)

    def test_processors_are_counted_without_nproc(self):
        self.stand_in("sysctl", "echo 8")
        self.assertEqual(self.common("cpu_count").stdout, "8\n")
        self.assertEqual(self.recorded("sysctl"), ["-n hw.ncpu"])

    def test_two_processors_are_assumed_where_none_can_be_counted(self):
        self.assertEqual(self.common("cpu_count").stdout, "2\n")

    def test_the_tools_of_homebrews_llvm_are_found_last(self):
        (self.folder / "llvm" / "bin").mkdir(parents=True)
        self.stand_in("brew", f"echo {self.folder}/llvm", records=False)
        finished = self.common('use_homebrew_llvm; echo "$PATH"')
        self.assertEqual(finished.stdout, f"{self.commands}:{self.folder}/llvm/bin\n")

    def test_fuzzing_is_done_by_the_compiler_of_homebrews_llvm(self):
        tools = self.folder / "llvm" / "bin"
        tools.mkdir(parents=True)
        self.stand_in("clang++", records=False)
        self.stand_in("brew", f"echo {self.folder}/llvm", records=False)
        chosen = 'use_clang_with_fuzzer && command -v clang++'
        self.assertEqual((self.common(chosen).returncode, self.common(chosen).stdout), (1, ""))
        (self.commands / "clang++").rename(tools / "clang++")
        self.assertEqual(self.common(chosen).stdout, f"{tools}/clang++\n")

    def test_a_private_home_is_new_empty_and_gone_afterwards(self):
        self.borrow("ls")
        finished = self.common('with_private_home bash -c \'ls -A "$HOME" "$TMPDIR"; '
                               'printf "%s\\n" "$HOME" "$CFFIXED_USER_HOME"\'')
        self.assertEqual(finished.returncode, 0, finished.stderr)
        home, on_macos = finished.stdout.split()[-2:]
        self.assertEqual(home, on_macos)
        self.assertTrue(home.startswith(str(self.folder.resolve()) + "/browsersweep-home."), home)
        self.assertEqual(list(self.folder.glob("browsersweep-home.*")), [])

    def test_a_private_home_goes_even_when_the_command_fails_and_locks_a_folder(self):
        lock = "mkdir -p \"$HOME/a/b\"; chmod 0 \"$HOME/a\"; exit 7"
        finished = self.common(f"with_private_home bash -c '{lock}' || echo status $?")
        self.assertEqual(finished.stdout, "status 7\n")
        self.assertEqual(list(self.folder.glob("browsersweep-home.*")), [])

    def test_a_build_uses_the_compiler_cache_in_the_build_folder_and_every_processor(self):
        self.stand_in("ccache", records=False)
        self.stand_in("sysctl", "echo 8", records=False)
        self.stand_in("cmake", 'echo "$CCACHE_DIR $CMAKE_CXX_COMPILER_LAUNCHER '
                               '$CMAKE_BUILD_PARALLEL_LEVEL"')
        line = f"{ROOT}/build/ccache ccache 8\n"
        self.assertEqual(self.common("build debug --target x").stdout, line + line)
        self.assertEqual(self.recorded("cmake"), ["--preset debug", "--build --preset debug --target x"])


class DemonstrationOnMacOS(ScriptTest):
    """scripts/demo in a copy of the project, with the commands that macOS has."""

    TOOLS = "bash env dirname basename mktemp mkdir chmod rm cat tail sed tr python3"

    def setUp(self):
        super().setUp()
        self.borrow(*self.TOOLS.split())
        self.stand_in("uname", "echo Darwin", records=False)
        self.stand_in("xcode-select", records=False)
        self.stand_in("sysctl", "echo 8", records=False)
        formulae = "\n".join(f"echo {name}" for name in package_list("macos_build"))
        self.stand_in("brew", f"case $1 in list) {formulae} ;; esac")
        self.project = self.folder / "project"
        shutil.copytree(ROOT / "scripts", self.project / "scripts")
        # What a build would leave: a host program that records how it is called.
        program = self.project / "build" / "demo" / "cli" / "browsersweep"
        program.parent.mkdir(parents=True)
        self.stand_in("browsersweep")
        shutil.copy(self.commands / "browsersweep", program)

    def test_it_builds_with_the_systems_processors_and_runs_every_command(self):
        self.stand_in("cmake")
        finished = self.run_script(self.project / "scripts" / "demo")
        self.assertEqual(finished.returncode, 0, finished.stdout + finished.stderr)
        self.assertEqual(self.recorded("cmake"), ["--preset demo", "--build --preset demo"])
        calls = [call.split(" ", 2)[2].split() for call in self.recorded("browsersweep")]
        commands = "browsers profiles size bookmarks notifications clean clean size clean size"
        self.assertEqual([call[0] for call in calls], commands.split())
        for call in calls:
            if call[0] == "clean":
                self.assertTrue("--dry-run" in call or "--yes" in call, call)

    def test_every_command_is_held_to_the_sample_home(self):
        self.stand_in("cmake")
        self.run_script(self.project / "scripts" / "demo")
        sample = str(self.folder.resolve()) + "/browsersweep-demo."
        for call in self.recorded("browsersweep"):
            self.assertTrue(call.startswith(f"--home {sample}"), call)
        self.assertEqual(list(self.folder.glob("browsersweep-demo.*")), [])

    def test_a_failing_build_is_shown_and_ends_it(self):
        self.stand_in("cmake", "echo no such generator; exit 1")
        finished = self.run_script(self.project / "scripts" / "demo")
        self.assertEqual(finished.returncode, 1)
        self.assertIn("no such generator", finished.stderr)
        self.assertEqual(self.recorded("browsersweep"), [])
