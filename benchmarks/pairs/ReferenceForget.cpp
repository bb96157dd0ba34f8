#include <array>
#include <cstring>
#include <filesystem>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "Reference.h"

namespace reference {
namespace {

// The key of an entry of the cache stands at its start.
constexpr std::size_t readForKey = 256;

std::uint64_t forgetCached(const std::string& folder, const std::string& host) {
    std::uint64_t deleted = 0;
    DIR* const directory = ::opendir(folder.c_str());
    while (const dirent* const entry = ::readdir(directory)) {
        std::array<char, readForKey> start{};
        const int file = ::openat(::dirfd(directory), entry->d_name, O_RDONLY);
        const ssize_t size = ::read(file, start.data(), start.size());
        ::close(file);
        if (size > 0 && ::memmem(start.data(), static_cast<std::size_t>(size), host.data(),
                                 host.size()) != nullptr) {
            deleted += ::unlinkat(::dirfd(directory), entry->d_name, 0) == 0 ? 1U : 0U;
        }
    }
    ::closedir(directory);
    return deleted;
}

std::string statements(const std::string& host, bool isCompact) {
    const std::string text =
        "DELETE FROM context_annotations WHERE visit_id IN (SELECT id FROM visits WHERE "
        "url IN (SELECT id FROM urls WHERE url LIKE 'https://" +
        host +
        "/%'));"
        "DELETE FROM visits WHERE url IN (SELECT id FROM urls WHERE url LIKE "
        "'https://" +
        host +
        "/%');"
        "DELETE FROM urls WHERE url LIKE 'https://" +
        host + "/%';";
    return (isCompact ? "PRAGMA secure_delete=ON;BEGIN;" : "BEGIN;") + text +
           (isCompact ? "COMMIT;VACUUM;" : "COMMIT;");
}

}  // namespace

std::uint64_t forgetSite(const std::string& home, const std::string& host, bool isCompact) {
    const std::string profile = home + "/Library/Application Support/Chromium/Default/";
    const std::string end = isCompact ? "COMMIT;VACUUM;" : "COMMIT;";
    std::uint64_t gone = execute(profile + "History", statements(host, isCompact));
    gone += execute(profile + "Cookies", std::string(isCompact ? "PRAGMA secure_delete=ON;" : "") +
                                             "BEGIN;DELETE FROM cookies WHERE host_key = '" + host +
                                             "';" + end);
    gone +=
        std::filesystem::remove_all(profile + "IndexedDB/https_" + host + "_0.indexeddb.leveldb");
    return gone + forgetCached(home + "/Library/Caches/Chromium/Default/Cache/Cache_Data", host);
}

}  // namespace reference
