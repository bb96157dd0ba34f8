#include "tests/support/Database.h"

#include <stdexcept>

#include <sqlite3.h>

namespace browsersweep::tests {

Database::Database(const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    database_ = std::shared_ptr<sqlite3>(opened, sqlite3_close);
    if (result != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(opened));
    }
}

void Database::execute(const std::string& sql) const {
    if (sqlite3_exec(database_.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sqlite3_errmsg(database_.get()));
    }
}

std::string Database::text(const std::string& sql) const {
    std::string result;
    const auto keepFirst = [](void* into, int /*columns*/, char** values, char** /*names*/) {
        *static_cast<std::string*>(into) = values[0] == nullptr ? "NULL" : values[0];
        return 1;  // the first row is enough
    };
    const int code = sqlite3_exec(database_.get(), sql.c_str(), keepFirst, &result, nullptr);
    if (code != SQLITE_OK && code != SQLITE_ABORT) {
        throw std::runtime_error(sqlite3_errmsg(database_.get()));
    }
    return result;
}

std::int64_t Database::number(const std::string& sql) const {
    return std::stoll(text(sql));
}

}  // namespace browsersweep::tests
