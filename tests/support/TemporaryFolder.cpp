#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

namespace browsersweep::tests {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : TemporaryFolder(fs::temp_directory_path()) {}

TemporaryFolder::TemporaryFolder(const fs::path& parent) {
    std::string pattern = (parent / "fixture-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary folder");
    }
    path_ = fs::canonical(pattern);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    for (const auto& entry : fs::recursive_directory_iterator(path_, ignored)) {
        if (entry.is_directory() && !entry.is_symlink()) {  // a test may have locked it
            fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
    fs::remove_all(path_, ignored);
}

fs::path TemporaryFolder::write(const fs::path& below, std::string_view contents) const {
    fs::path file = path_ / below;
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << contents;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file;
}

fs::path TemporaryFolder::makeFolder(const fs::path& below) const {
    fs::create_directories(path_ / below);
    return path_ / below;
}

std::vector<std::string> TemporaryFolder::snapshot() const {
    std::vector<std::string> lines;
    for (const auto& entry : fs::recursive_directory_iterator(path_)) {
        std::string line = entry.path().lexically_relative(path_).string();
        if (entry.is_symlink()) {
            line += " -> " + fs::read_symlink(entry.path()).string();
        } else if (entry.is_directory()) {
            line += "/";
        } else {
            line += ": " + readFile(entry.path());
        }
        lines.push_back(std::move(line));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

fs::path folderInMemory() {
    const fs::path memory("/dev/shm");
    return ::access(memory.c_str(), W_OK) == 0 ? memory : fs::temp_directory_path();
}

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string text(stream ? fs::file_size(path) : 0, '\0');
    if (!stream.read(text.data(), static_cast<std::streamsize>(text.size()))) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return text;
}

}  // namespace browsersweep::tests
