"""scripts/mutate: which mutants a file has, how they are written into it, and what their runs may touch."""

import multiprocessing
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

from support import ROOT, ScriptTest

sys.path.append(str(ROOT / "scripts" / "lib"))
from mutation import accepted, build, confine, points, run, schema  # noqa: E402
from mutation.mutants import Insertion, Mutant  # noqa: E402

OPTIONS = ["-std=c++20"]


def in_namespace(code):
    return f"namespace browsersweep {{\n{code}\n}}\n"


@unittest.skipUnless(shutil.which("clang++"), "clang++ is not installed")
class Points(ScriptTest):
    def points_in(self, code):
        self.file = self.folder / "Code.cpp"
        self.file.write_text(in_namespace(code), encoding="utf-8")
        return points.points_of(self.file, self.folder, OPTIONS)

    def changes_in(self, code, kind):
        return [f"{each.original} => {each.mutated}" for each in self.points_in(code) if each.kind == kind]

    def test_operators_have_their_neighbours(self):
        code = "bool f(int a, int b) { return a < b || a + b == 4; }"
        self.assertEqual(self.changes_in(code, "operator"), [
            "a < b || a + b == 4 => a < b && a + b == 4", "a < b => a <= b", "a < b => a >= b",
            "a + b == 4 => a + b != 4", "a + b => a - b"])
        self.assertEqual(self.changes_in(code, "operand"), [
            "a < b || a + b == 4 => static_cast<bool>(a + b == 4)",
            "a < b || a + b == 4 => static_cast<bool>(a < b)"])

    def test_constants_are_off_by_one_and_texts_lose_their_end(self):
        code = 'int g(const char*, bool);\nint f() { return g("ab", true) + 7; }'
        self.assertEqual(self.changes_in(code, "constant"), ["true => false", "7 => 7 + 1"])
        self.assertEqual(self.changes_in(code, "text"), ['"ab" => "a"'])

    def test_enumerators_become_another_one_of_their_type(self):
        code = "enum class E { one, two };\nE f() { return E::two; }"
        self.assertEqual(self.changes_in(code, "constant"), ["E::two => E::one"])

    def test_arguments_of_one_type_change_places_and_each_may_be_empty(self):
        code = "int g(int, int, bool);\nint f(int a, int b, bool c) { return g(a, b, c); }"
        self.assertEqual(self.changes_in(code, "swapped"), ["a, b => b, a"])
        self.assertEqual(self.changes_in(code, "argument"),
                         ["a => (empty)", "b => (empty)", "c => (empty)"])

    def test_statements_results_and_conditions(self):
        code = "void g();\nint f(bool a, int b) { if (a) { g(); } return b; }"
        self.assertEqual(self.changes_in(code, "removed"), ["g() => "])
        self.assertEqual(self.changes_in(code, "result"), ["return b => return {}"])
        self.assertEqual(self.changes_in(code, "condition"), ["a => !(a)"])

    def test_what_only_the_compiler_sees_is_left_alone(self):
        code = ("enum { e = 3 };\nstatic_assert(2 > 1);\ntemplate <int N> struct S {};\n"
                "int f(S<4>*, int a) { switch (a) { case 5: break; } return a; }")
        self.assertEqual(self.changes_in(code, "constant"), [])

    def test_room_and_the_last_words_of_a_process_have_no_mutants(self):
        code = ("struct V { void reserve(int); };\nvoid fatalError(const char*);\n"
                'void f(V& v, int a) { v.reserve(a + 1); fatalError("no"); }')
        self.assertEqual([each.mutated for each in self.points_in(code) if each.kind != "removed"], [])

    def test_a_template_is_read_once(self):
        code = "template <typename T> T f(T a) { return a + 1; }\nint g() { return f(2) + f(char(3)); }"
        self.assertEqual(self.changes_in(code, "operator").count("a + 1 => a - 1"), 1)

    def test_the_changed_file_does_what_the_chosen_mutant_says(self):
        code = ("constexpr int table[]{10, 20};\nconstexpr int twice(int a) { return a * 2; }\n"
                "static_assert(twice(2) == 4);\n"
                'int f(int a) { if (a > 1) { return table[0]; } return twice(a); }')
        mutants = dict(enumerate(self.points_in(code), 1))
        changed = schema.Schema("Code.cpp", in_namespace(code), mutants)
        self.assertEqual(changed.text.count("\n"), in_namespace(code).count("\n"))
        program = changed.text + "int main(int, char** given) { return browsersweep::f(given[1][0] - '0'); }\n"
        (self.folder / "Changed.cpp").write_text(
            "namespace browsersweep::mutation { unsigned only = 0;\n"
            "bool chosen(unsigned number) noexcept { return number == only; } }\n"
            "#include <cstdlib>\nstatic const bool set = [] { const char* n = std::getenv(\"MUTANT\");\n"
            "browsersweep::mutation::only = n ? std::atoi(n) : 0; return true; }();\n" + program,
            encoding="utf-8")
        made = self.folder / "made"
        subprocess.run(["clang++", *OPTIONS, "-w", "-Wno-narrowing", "-include",
                        str(build.OWN / "Mutation.h"), str(self.folder / "Changed.cpp"), "-o", str(made)],
                       check=True)

        def result(argument, kind=None, mutated=None):
            numbers = [number for number, each in mutants.items()
                       if (each.kind, each.mutated) == (kind, mutated)] or [0]
            return subprocess.run([str(made), str(argument)], check=False,
                                  env={"MUTANT": str(numbers[0])}).returncode

        self.assertEqual([result(1), result(2)], [2, 10])
        self.assertEqual(result(1, "operator", "a >= 1"), 10)
        self.assertEqual(result(2, "constant", "10 + 1"), 11)
        self.assertEqual(result(3, "condition", "none"), 10)
        self.assertEqual(result(1, "constant", "2 + 1"), 3)


class Errors(ScriptTest):
    def test_an_error_of_the_compiler_is_laid_to_the_mutant_that_it_points_to(self):
        mutants = {5: Mutant("operator", 4, "a + b", "a - b",
                                    (Insertion(4, 9, "(@ ? (a - b) : ", ")"),)),
                   6: Mutant("operator", 14, "c", "d", (Insertion(14, 15, "(@ ? d : ", ")"),))}
        changed = schema.Schema("A.cpp", "x = a + b;\n y c;\n", mutants)
        column = changed.text.index("a - b") + 3
        said = list(build.diagnostics(
            f"A.cpp: In function 'f':\nA.cpp:1:{column}: error: no match for 'operator-'\n"
            "B.h:7:1: note: candidate\nB.h:9:2:   required from here\nB.h:9:3: error: another\n"))
        self.assertEqual(said, [("error: no match for 'operator-'", [("A.cpp", 1, column), ("B.h", 7, 1)]),
                                ("error: another", [("B.h", 9, 3), ("B.h", 9, 2)])])
        self.assertEqual(changed.blamed([(1, column)]), {5})
        changed.refuse({5}, "no match")
        changed.write()
        self.assertEqual(changed.text, "x = a + b;\n y (browsersweep::mutation::chosen(6) ? d : c);\n")


class Explanations(ScriptTest):
    KEY = accepted.Key("cookies/A.cpp", "constant", "int a = 0;", "0", "0 + 1")

    def test_a_mutant_is_known_by_its_line_and_its_change(self):
        listed = accepted.Explained("# a list\n== cookies/A.cpp\n-- it is assigned before it is read\n"
                                    "constant | int a = 0; | 0 => 0 + 1\n")
        self.assertIn(self.KEY, listed)
        self.assertNotIn(accepted.Key("cookies/A.cpp", "constant", "int b = 0;", "0", "0 + 1"), listed)
        self.assertNotIn(accepted.Key("cookies/B.cpp", "constant", "int a = 0;", "0", "0 + 1"), listed)
        self.assertEqual((listed.files, listed.problems), ({"cookies/A.cpp"}, []))

    def test_a_mutant_without_a_reason_is_not_explained(self):
        listed = accepted.Explained("== cookies/A.cpp\nconstant | int a = 0; | 0 => 0 + 1\n")
        self.assertNotIn(self.KEY, listed)
        self.assertEqual(listed.problems, ["line 2 has no file or no reason"])

    def test_the_list_of_the_project_has_a_reason_for_each_and_names_files_that_exist(self):
        path = ROOT / "docs" / "survivors.txt"
        self.assertEqual(accepted.read(path).problems, [])
        for line in path.read_text(encoding="utf-8").splitlines():
            if line.startswith("== "):
                self.assertTrue((ROOT / "browsersweep" / line[3:]).is_file(), line)


class Groups(ScriptTest):
    def test_the_quickest_come_first_and_one_always_does(self):
        tests = [run.Test(1, "A.a", "f", 0.5), run.Test(2, "A.b", "f", 0.2), run.Test(3, "A.c", "f", 2.0)]
        self.assertEqual([each.name for each in run.quickest(tests, 1)], ["A.b", "A.a"])
        self.assertEqual([each.name for each in run.quickest(tests[2:], 1)], ["A.c"])
        self.assertEqual(run.quickest([], 1), [])


def try_to_change(inside, outside, answers):
    confine.confine(str(inside))
    tried = []
    for folder in (inside, outside):
        for attempt in (lambda: (folder / "new").write_text("x", encoding="utf-8"),
                        lambda: (folder / "old").unlink()):
            try:
                attempt()
                tried.append(True)
            except OSError:
                tried.append(False)
    answers.put(tried)


@unittest.skipUnless(sys.platform == "linux" and confine.version(), "the kernel lacks Landlock")
class Confinement(ScriptTest):
    def test_a_confined_process_changes_its_own_folder_alone(self):
        inside, outside = self.folder / "inside", self.folder / "outside"
        for each in (inside, outside):
            each.mkdir()
            (each / "old").write_text("x", encoding="utf-8")
        context = multiprocessing.get_context("fork")
        answers = context.Queue()
        child = context.Process(target=try_to_change, args=(inside, outside, answers))
        child.start()
        self.assertEqual(answers.get(timeout=60), [True, True, False, False])
        child.join()
        self.assertEqual(os.listdir(outside), ["old"])
        self.assertEqual(os.listdir(inside), ["new"])


class Program(ScriptTest):
    def test_it_refuses_a_machine_without_the_compiler_that_reads_the_files(self):
        self.borrow("env")
        (self.commands / "python3").symlink_to(sys.executable)
        finished = self.run_script(ROOT / "scripts" / "mutate", "--sample", "1")
        self.assertNotEqual(finished.returncode, 0)
        self.assertIn("clang++ is missing; run scripts/setup", finished.stderr)
        self.assertEqual(list(pathlib.Path(self.folder).glob("browsersweep-mutate*")), [])
