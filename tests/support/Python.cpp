#include "tests/support/Python.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>

#include <sys/wait.h>
#include <unistd.h>

namespace browsersweep::tests {
namespace {

// A folder of its own, removed with all it holds.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "python-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no folder for a Python program");
        }
        path_ = pattern;
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string write(const char* name, std::string_view contents) const {
        const std::filesystem::path file = path_ / name;
        std::ofstream(file, std::ios::binary) << contents;
        return file.string();
    }

private:
    std::filesystem::path path_;
};

std::string outputOf(const std::string& command) {
    FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("a program could not be started: " + command);
    }
    std::string output;
    std::array<char, 4096> buffer{};
    for (std::size_t count = 1; count > 0;) {
        count = std::fread(buffer.data(), 1, buffer.size(), pipe);
        output.append(buffer.data(), count);
    }
    if (::pclose(pipe) != 0) {
        throw std::runtime_error("a program failed: " + command);
    }
    return output;
}

}  // namespace

std::optional<std::string> runPython(std::string_view program, std::string_view input) {
    // NOLINTNEXTLINE(cert-env33-c,concurrency-mt-unsafe): a fixed command, in a test
    if (std::system("command -v python3 > /dev/null 2>&1") != 0) {
        return std::nullopt;
    }
    const ScratchFolder folder;
    const std::string script = folder.write("program.py", program);
    const std::string standardInput = folder.write("input", input);
    return outputOf("python3 '" + script + "' < '" + standardInput + "'");
}

}  // namespace browsersweep::tests
