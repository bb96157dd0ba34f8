#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <linux/fs.h>
#include <sqlite3.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "Reference.h"

namespace reference {
namespace {

std::string copied(const std::string& from) {
    std::string to = "/tmp/reference-XXXXXX";
    if (const char* folder = std::getenv("TMPDIR")) {
        to = std::string(folder) + "/reference-XXXXXX";
    }
    const int target = ::mkstemp(to.data());
    const int source = ::open(from.c_str(), O_RDONLY);
    if (::ioctl(target, FICLONE, source) != 0) {
        constexpr std::size_t piece = std::size_t{1} << 30;
        while (::copy_file_range(source, nullptr, target, nullptr, piece, 0) > 0) {
        }
    }
    ::close(source);
    ::close(target);
    return to;
}

}  // namespace

std::uint64_t count(const std::string& database, const std::string& sql) {
    sqlite3* connection = nullptr;
    sqlite3_stmt* statement = nullptr;
    sqlite3_open(database.c_str(), &connection);
    sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
    const bool hasRow = sqlite3_step(statement) == SQLITE_ROW;
    const int result = hasRow ? sqlite3_column_int(statement, 0) : -1;
    sqlite3_finalize(statement);
    sqlite3_close(connection);
    return static_cast<std::uint64_t>(result);
}

std::uint64_t countOnCopy(const std::string& database, const std::string& sql) {
    const std::string copy = copied(database);
    const std::uint64_t result = count(copy, sql);
    ::unlink(copy.c_str());
    return result;
}

std::uint64_t execute(const std::string& database, const std::string& sql) {
    sqlite3* connection = nullptr;
    sqlite3_open(database.c_str(), &connection);
    sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    const auto changes = static_cast<std::uint64_t>(sqlite3_total_changes(connection));
    sqlite3_close(connection);
    return changes;
}

}  // namespace reference
