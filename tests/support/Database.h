#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

struct sqlite3;

namespace browsersweep::tests {

/** A database opened by the test itself, through SQLite's plain interface. */
class Database {
public:
    /** Opens or creates it, with the folders above it. */
    explicit Database(const std::filesystem::path& path);

    /** Runs statements. Throws `std::runtime_error` with SQLite's message. */
    void execute(const std::string& sql) const;

    /** The first column of the first row as text; "NULL" for NULL, "" for no row. */
    std::string text(const std::string& sql) const;

    /** The first column of the first row as a number. */
    std::int64_t number(const std::string& sql) const;

private:
    std::shared_ptr<sqlite3> database_;
};

}  // namespace browsersweep::tests
