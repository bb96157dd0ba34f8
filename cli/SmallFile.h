#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace browsersweep::cli {

/** A file that was read whole, or why it was not. */
struct SmallFile {
    int error = 0;               ///< the system's number; 0 where nothing failed
    bool isRegularFile = false;  ///< otherwise nothing of it was read
    bool isTooLarge = false;
    std::string text;
};

/** Reads a file of at most so many bytes. Never waits for one that is no regular file. */
SmallFile readSmallFile(const std::filesystem::path& path, std::size_t largest);

}  // namespace browsersweep::cli
