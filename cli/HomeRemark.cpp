#include "cli/HomeRemark.h"

#include <algorithm>
#include <array>

namespace browsersweep::cli {
namespace {

/** Where browsers on Linux keep what they keep below Library on macOS. */
constexpr std::array foldersOnLinux{".config",      ".mozilla", ".cache",
                                    ".local/share", "snap",     ".var/app"};

bool looksLikeLinux(const FileManager& files, const std::filesystem::path& home) {
    const auto isThere = [&](const char* folder) {
        return files.fileExists(home / folder).isDirectory;
    };
    return !isThere("Library") &&
           std::any_of(foldersOnLinux.begin(), foldersOnLinux.end(), isThere);
}

}  // namespace

std::string remarkOnHome(const FileManager& files,
                         const std::optional<std::filesystem::path>& askedFor) {
    const auto home = files.homeDirectory();
    if (askedFor && !files.fileExists(home).isDirectory) {
        return askedFor->string() + " is not an existing folder";
    }
    return looksLikeLinux(files, home)
               ? home.string() + ": this looks like a Linux home; only the macOS layout is read"
               : "";
}

}  // namespace browsersweep::cli
