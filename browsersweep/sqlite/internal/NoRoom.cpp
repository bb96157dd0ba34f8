#include "browsersweep/sqlite/internal/NoRoom.h"

#include <system_error>

#include "browsersweep/platform/internal/WantOfRoom.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {

bool saysNoRoom(const std::exception& error) noexcept {
    if (const auto* const system = dynamic_cast<const std::system_error*>(&error)) {
        return isWantOfRoom(system->code());
    }
    const auto* const sqlite = dynamic_cast<const SQLiteError*>(&error);
    // SQLite says the latter where there is room for a copy and none for what it puts beside it.
    return sqlite != nullptr && (sqlite->kind() == SQLiteError::Kind::full ||
                                 sqlite->kind() == SQLiteError::Kind::inputOutput);
}

}  // namespace browsersweep
