#pragma once

#include <filesystem>
#include <string_view>

namespace browsersweep::cli {

/**
 * A file that appears at its place with all of its text or not at all: the text goes to a file
 * beside it, which takes its place when everything is written. What stood there is replaced then.
 */
class NewFile {
public:
    /**
     * Begins the file, so that a wrong place is known before any work is done. Throws a
     * `std::system_error` where nothing can be written, and a `std::runtime_error` where something
     * stands that is no file, such as a device, which a file must not replace.
     */
    explicit NewFile(const std::filesystem::path& place);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    /** Takes away what was begun and not finished. */
    ~NewFile();

    /** Writes the text and puts the file at its place. Throws a `std::system_error`. */
    void finish(std::string_view text);

private:
    [[noreturn]] void fail(int error) const;

    std::filesystem::path place_;
    std::filesystem::path draft_;
    int descriptor_ = -1;
};

}  // namespace browsersweep::cli
