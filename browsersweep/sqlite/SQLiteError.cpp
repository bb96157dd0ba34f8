#include "browsersweep/sqlite/SQLiteError.h"

#include <algorithm>
#include <array>
#include <utility>

#include <sqlite3.h>

namespace browsersweep {
namespace {

using Kind = SQLiteError::Kind;

// clang-format off
constexpr std::array<std::pair<int, Kind>, 14> kinds{{
    {SQLITE_ERROR,    Kind::statement},
    {SQLITE_BUSY,     Kind::locked},
    {SQLITE_LOCKED,   Kind::locked},
    {SQLITE_PROTOCOL, Kind::locked},
    {SQLITE_PERM,     Kind::denied},
    {SQLITE_AUTH,     Kind::denied},
    {SQLITE_READONLY, Kind::denied},
    {SQLITE_CANTOPEN, Kind::cannotOpen},
    {SQLITE_CORRUPT,  Kind::damaged},
    {SQLITE_NOTADB,   Kind::damaged},
    {SQLITE_FORMAT,   Kind::damaged},
    {SQLITE_FULL,     Kind::full},
    {SQLITE_TOOBIG,   Kind::damaged},
    {SQLITE_IOERR,    Kind::inputOutput},
}};
// clang-format on

}  // namespace

SQLiteError::Kind SQLiteError::kindOf(int resultCode) noexcept {
    constexpr int primary = 0xff;
    const auto* const found = std::find_if(kinds.begin(), kinds.end(), [&](const auto& row) {
        return row.first == (resultCode & primary);
    });
    return found == kinds.end() ? Kind::other : found->second;
}

}  // namespace browsersweep
