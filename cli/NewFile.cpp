#include "cli/NewFile.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "cli/Console.h"

namespace browsersweep::cli {
namespace {

/** Follows links, so that a link to the file stays one. */
std::filesystem::path realPlace(const std::filesystem::path& place) {
    std::error_code error;
    auto real = std::filesystem::weakly_canonical(place, error);
    return error ? place : real;
}

/** Creates a hidden file that was not there. Its number tells it from those of other runs. */
int createBeside(const std::filesystem::path& place, std::filesystem::path& draft) {
    constexpr int attempts = 100;
    int descriptor = -1;
    for (int attempt = 0; attempt < attempts && descriptor < 0; ++attempt) {
        draft = place.parent_path() /
                fmt::format(".{}.{}-{}", place.filename().string(), ::getpid(), attempt);
        descriptor = ::open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,  // NOLINT
                            0666);
        if (descriptor < 0 && errno != EEXIST) {
            break;
        }
    }
    return descriptor;
}

}  // namespace

NewFile::NewFile(const std::filesystem::path& place) : place_(realPlace(place)) {
    std::error_code error;
    const auto status = std::filesystem::status(place_, error);
    if (std::filesystem::is_directory(status)) {
        fail(EISDIR);
    }
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw std::runtime_error(
            fmt::format("cannot write the page {}: it is not a regular file", place_.string()));
    }
    descriptor_ = createBeside(place_, draft_);
    if (descriptor_ < 0) {
        fail(errno);
    }
}

NewFile::~NewFile() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        ::unlink(draft_.c_str());
    }
}

void NewFile::finish(std::string_view text) {
    if (const int error = writeAll(descriptor_, text)) {
        fail(error);
    }
    if (::fsync(descriptor_) != 0 || std::rename(draft_.c_str(), place_.c_str()) != 0) {
        fail(errno);
    }
    ::close(descriptor_);
    descriptor_ = -1;
}

void NewFile::fail(int error) const {
    throw std::system_error(error, std::generic_category(),
                            fmt::format("cannot write the page {}", place_.string()));
}

}  // namespace browsersweep::cli
