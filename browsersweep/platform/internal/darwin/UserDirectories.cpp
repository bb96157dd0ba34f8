#include "browsersweep/platform/internal/posix/UserDirectories.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <string_view>

#include <limits.h>
#include <sysdir.h>
#include <unistd.h>

namespace browsersweep::posix {
namespace {

/** The system writes the home folder, which may be a sandbox's container, as "~". */
std::filesystem::path withHome(std::string_view path) {
    if (path.substr(0, 2) != "~/") {
        return path;
    }
    return currentHomeDirectory() / path.substr(2);
}

}  // namespace

/**
 * The cookie storage, the privacy settings and the daemons are the account's, so the files must be
 * too: `HOME` alone would pair another folder with them. The first variable is the platform's own,
 * for that very purpose, and is set in a sandbox; it means nothing in a program with other rights
 * than its user's.
 */
std::filesystem::path currentHomeDirectory() {
    if (const auto home = homeInEnvironment("CFFIXED_USER_HOME"); home && ::issetugid() == 0) {
        return *home;
    }
    int error = 0;
    if (const auto home = homeInUserDatabase(error)) {
        return *home;
    }
    if (const auto home = homeInEnvironment("HOME")) {
        return *home;
    }
    throwNoHome(error);
}

std::filesystem::path systemTemporaryDirectory() {
    const char* const named = std::getenv("TMPDIR");
    if (named != nullptr && *named != '\0') {
        return named;
    }
    std::array<char, PATH_MAX> path{};
    const std::size_t length = ::confstr(_CS_DARWIN_USER_TEMP_DIR, path.data(), path.size());
    return length > 0 && length <= path.size() ? path.data() : "/tmp";
}

std::vector<std::filesystem::path> systemDirectories(SearchPathDirectory directory) {
    std::vector<std::filesystem::path> directories;
    std::array<char, PATH_MAX> path{};
    auto state = ::sysdir_start_search_path_enumeration(
        static_cast<sysdir_search_path_directory_t>(directory), SYSDIR_DOMAIN_MASK_USER);
    while ((state = ::sysdir_get_next_search_path_enumeration(state, path.data())) != 0) {
        directories.push_back(withHome(path.data()));
    }
    return directories;
}

}  // namespace browsersweep::posix
