#pragma once

#include <cstddef>
#include <functional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

namespace browsersweep::tests {

/** A call as it is noted: its name and its arguments, pointers as addresses. */
template <typename... Arguments>
std::string call(std::string_view name, Arguments... arguments) {
    std::ostringstream text;
    text << name;
    ((text << ' ' << arguments), ...);
    return text.str();
}

/**
 * SQLite's way to the system's files, which reaches none: it notes what it is asked for, and gives
 * every call the same answer, which is no code of SQLite's. While it lives it is what SQLite takes
 * where no other way is named.
 */
class NotedSystemFiles {
public:
    static constexpr int answer = 4242;

    NotedSystemFiles();
    NotedSystemFiles(const NotedSystemFiles&) = delete;
    NotedSystemFiles& operator=(const NotedSystemFiles&) = delete;
    ~NotedSystemFiles();

    sqlite3_vfs& vfs() noexcept { return vfs_; }

    /** What was called since this was asked last. */
    std::vector<std::string> taken();

    /** What an opening gives: a code, and whether there is a file to be closed then. */
    void openWith(int code, bool hasFile) noexcept;

    /** The version of the files that are opened from now on. */
    void setFileVersion(int version) noexcept { methods_.iVersion = version; }

    /** Is called with the name of each file that is opened. */
    std::function<void(const char*)> onOpening;

    void note(std::string text) { calls_.push_back(std::move(text)); }

private:
    void setFileMethods() noexcept;
    void setOtherMethods() noexcept;
    static int open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags,
                    int* flagsGiven);

    sqlite3_vfs vfs_{};
    sqlite3_io_methods methods_{};
    std::vector<std::string> calls_;
    int code_ = SQLITE_OK;
    bool hasFile_ = true;
};

}  // namespace browsersweep::tests
