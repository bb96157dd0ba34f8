"""Projects that use the library, as people do: through the CMake package, as a part of their own build,
and through pkg-config, each with the static and the shared library."""

import os
import pathlib
import shutil
import subprocess
import sys

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]
CONSUMERS = ROOT / "tests" / "consumers"
BUILDS = ROOT / "build" / "consumers"
KINDS = ("static", "shared")
# Where there are two compilers, what is installed of one is used by the other.
CLANG = ("-DCMAKE_C_COMPILER=clang", "-DCMAKE_CXX_COMPILER=clang++") if shutil.which("clang++") else ()


def run(*command, **options):
    """What the command prints; a failure with all of it where the command fails."""
    finished = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              check=False, **options)
    if finished.returncode != 0:
        pytest.fail(f"{command}\n{finished.stdout[-20000:]}", pytrace=False)
    return finished.stdout


def needs(tool):
    if shutil.which(tool) is None:
        pytest.skip(f"{tool} is not installed")


def install(preset, prefix, *options):
    """Builds what is installed, and installs it."""
    run("cmake", "--preset", preset, *options, cwd=ROOT)
    run("cmake", "--build", "--preset", preset, "--target", "browsersweep", "browsersweep_program",
        cwd=ROOT)
    run("cmake", "--install", ROOT / "build" / preset, "--prefix", prefix)
    return prefix


@pytest.fixture(scope="module")
def prefixes(tmp_path_factory):
    """The folders in which the two kinds of the library are installed."""
    folder = tmp_path_factory.mktemp("installed")
    return {"static": install("debug", folder / "static"),
            "shared": install("shared", folder / "shared", *CLANG)}


def make_project(name, kind, *options):
    """Builds one of the projects beside this file."""
    folder = BUILDS / f"{name}-{kind}"
    run("cmake", "-S", CONSUMERS / name, "-B", folder, "-G", "Ninja", *options)
    run("cmake", "--build", folder)
    return folder


def try_program(program, folder, libraries=None):
    """Runs a consumer on a new sample home. A library that is not where the program looks for it is
    found through the environment, which macOS takes away where env(1) passes it on."""
    run(sys.executable, ROOT / "scripts" / "sample" / "make_home.py", folder / "home")
    found = {"LD_LIBRARY_PATH": str(libraries), "DYLD_LIBRARY_PATH": str(libraries)} if libraries else {}
    run(program, folder / "home", env={**os.environ, **found})


def find_package(kind, prefix, folder):
    shutil.rmtree(BUILDS / f"find_package-{kind}", ignore_errors=True)
    made = make_project("find_package", kind, f"-DCMAKE_PREFIX_PATH={prefix}")
    try_program(made / "consumer", folder)


@pytest.mark.parametrize("kind", KINDS)
def test_the_host_program_runs_where_it_is_installed(kind, prefixes):
    run(prefixes[kind] / "bin" / "browsersweep", "--help")


def test_everything_else_links_the_shared_library(prefixes):
    run("cmake", "--build", "--preset", "shared", cwd=ROOT)


@pytest.mark.parametrize("name", ("python_ctypes", "python_application"))
def test_the_examples_in_python_run(name, prefixes):
    library, = [path for name in ("libbrowsersweep.so", "libbrowsersweep.dylib")
                for path in prefixes["shared"].rglob(name)]
    run(sys.executable, ROOT / "tests" / "support" / "run_on_sample.py", "--expect",
        ROOT / "tests" / "examples" / f"{name}.expected", sys.executable, "-B",
        ROOT / "examples" / f"{name}.py", library)


def test_each_installed_header_compiles_alone(prefixes):
    make_project("headers", "static", f"-DCMAKE_PREFIX_PATH={prefixes['static']}")


def test_the_module_map_makes_a_module(prefixes, tmp_path):
    """As clang reads it for Objective-C and Swift."""
    needs("clang")
    headers = prefixes["static"] / "include"
    run("clang", "-x", "objective-c", "-fmodules", f"-fmodules-cache-path={tmp_path}", "-fsyntax-only",
        "-Wall", "-Werror", "-I", headers / "browsersweep" / "c", "-I", headers, CONSUMERS / "module.m")


@pytest.mark.parametrize("kind", KINDS)
def test_a_program_in_swift_finds_the_module(kind, prefixes, tmp_path):
    """The static library asks for what it needs from the system, as the guide says."""
    needs("swiftc")
    needs("pkg-config")
    headers, libraries = prefixes[kind] / "include", prefixes[kind] / "lib"
    mode = ["--static"] if kind == "static" else []
    linked = run("pkg-config", *mode, "--libs", "browsersweep",
                 env={**os.environ, "PKG_CONFIG_PATH": str(libraries / "pkgconfig")}).split()
    paths = [word for flag in linked if flag.startswith("-Wl,-rpath,")
             for word in ("-Xlinker", "-rpath", "-Xlinker", flag.removeprefix("-Wl,-rpath,"))]
    run("swiftc", "-warnings-as-errors", "-I", headers / "browsersweep" / "c", CONSUMERS / "main.swift",
        "-o", tmp_path / "program", *(flag for flag in linked if not flag.startswith("-Wl,")), *paths)
    try_program(tmp_path / "program", tmp_path, libraries)


def test_an_application_in_swift_takes_the_package(tmp_path):
    """Swift's package manager compiles the library from its sources."""
    needs("swift")
    needs("pkg-config")
    made = BUILDS / "swift"
    run("swift", "build", "--package-path", CONSUMERS / "swift", "--scratch-path", made)
    try_program(made / "debug" / "consumer", tmp_path)


@pytest.mark.parametrize("kind", KINDS)
def test_a_project_finds_the_package(kind, prefixes, tmp_path):
    find_package(kind, prefixes[kind], tmp_path)


@pytest.mark.parametrize("kind", KINDS)
def test_a_project_has_the_library_as_a_part(kind, tmp_path):
    """It chooses the compiler, and the flags. The shared library is made here by the compiler that has
    not made what is installed."""
    shared = "ON" if kind == "shared" else "OFF"
    made = make_project("add_subdirectory", kind, f"-DBUILD_SHARED_LIBS={shared}", "-DCMAKE_UNITY_BUILD=ON",
                        "-DBROWSERSWEEP_PRECOMPILE=ON", "-DBROWSERSWEEP_WARNINGS_AS_ERRORS=ON")
    try_program(made / "consumer", tmp_path)
    run("cmake", "--install", made, "--prefix", tmp_path / "own")
    installed = [path for path in (tmp_path / "own").rglob("*") if not path.is_dir()]
    assert installed == [tmp_path / "own" / "bin" / "consumer"]


@pytest.mark.parametrize("compiler, standard, source",
                         [("c++", "c++20", "main.cpp"), ("cc", "c11", "main.c")], ids=["C++", "C"])
@pytest.mark.parametrize("kind", KINDS)
def test_a_program_is_compiled_through_pkg_config(kind, compiler, standard, source, prefixes, tmp_path):
    needs("pkg-config")
    libraries, program = prefixes[kind] / "lib", tmp_path / "program"
    mode = ["--static"] if kind == "static" else []
    flags = run("pkg-config", *mode, "--cflags", "--libs", "browsersweep",
                env={**os.environ, "PKG_CONFIG_PATH": str(libraries / "pkgconfig")})
    run(compiler, f"-std={standard}", CONSUMERS / source, "-o", program, *flags.split())
    try_program(program, tmp_path, libraries)


@pytest.fixture(scope="module")
def packages(prefixes, tmp_path_factory):
    """Debian's packages of the shared library: a package's name -> its file."""
    needs("dpkg-deb")
    folder = tmp_path_factory.mktemp("packages")
    run("cpack", "-G", "DEB", "-B", folder, cwd=ROOT / "build" / "shared")
    return {run("dpkg-deb", "--field", file, "Package").strip(): file for file in folder.glob("*.deb")}


def unpacked(files, folder):
    """The files of some packages, beside the system rather than installed."""
    for file in files:
        run("dpkg-deb", "-x", file, folder)
    return folder / "usr"


def test_debian_gets_the_library_its_development_files_and_the_program_apart(packages):
    assert set(packages) == {"libbrowsersweep0.1", "libbrowsersweep-dev", "browsersweep"}
    for name in ("libbrowsersweep-dev", "browsersweep"):
        assert "libbrowsersweep0.1 (= 0.1.0)" in run("dpkg-deb", "--field", packages[name], "Depends")
    assert "libsqlite3" in run("dpkg-deb", "--field", packages["libbrowsersweep0.1"], "Depends")


def test_debians_program_needs_no_development_files(packages, tmp_path):
    usr = unpacked([packages["libbrowsersweep0.1"], packages["browsersweep"]], tmp_path)
    assert not list(usr.rglob("*.h")) and (usr / "share" / "man" / "man1").is_dir()
    run(usr / "bin" / "browsersweep", "--help")


def test_a_project_finds_debians_packages(packages, tmp_path):
    chosen = [packages["libbrowsersweep0.1"], packages["libbrowsersweep-dev"]]
    usr = unpacked(chosen, tmp_path / "unpacked")
    assert not (usr / "bin").exists()
    find_package("deb", usr, tmp_path)


def test_the_archive_can_be_used_where_it_is_unpacked(prefixes, tmp_path):
    run("cpack", "-G", "TGZ", "-B", tmp_path, cwd=ROOT / "build" / "shared")
    archive, = tmp_path.glob("*.tar.gz")
    (tmp_path / "unpacked").mkdir()
    run("tar", "-xzf", archive, "-C", tmp_path / "unpacked")
    folder, = (tmp_path / "unpacked").iterdir()
    assert {path.name for path in folder.iterdir()} == {"bin", "include", "lib", "share"}
    find_package("archive", folder, tmp_path)
    run(folder / "bin" / "browsersweep", "--help")
