#include "browsersweep/hosting/ItemExamination.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "browsersweep/binarycoding/BinaryDataDecoder.h"
#include "browsersweep/binarycoding/BinaryDataEncoder.h"
#include "browsersweep/cookies/BinaryCookies.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/hosting/FailureKind.h"
#include "browsersweep/platform/Accessibility.h"
#include "browsersweep/platform/internal/posix/FileFacts.h"
#include "browsersweep/sqlite/DatabaseInspection.h"
#include "browsersweep/sqlite/SQLiteError.h"

namespace browsersweep {
namespace {

namespace fs = std::filesystem;
using Kind = CleanableDataLocation::Kind;
using Obstacle = std::optional<ItemObstacle>;

std::string withKind(FailureKind kind, std::string_view text) {
    std::string all(displayName(kind));
    all += all.empty() || text.empty() ? "" : ": ";
    return all.append(text);
}

std::string withKind(const std::exception& error) {
    return withKind(failureKind(error), error.what());
}

/** A folder of a database's name holds no rows; what a link of that name leads to is not known. */
bool isFolder(const fs::path& path) noexcept {
    std::error_code error;
    return fs::is_directory(fs::symlink_status(path, error));
}

ItemVerdict verdictOfCode(const DatabaseInspection& found) noexcept {
    switch (SQLiteError::kindOf(found.resultCode)) {
        case SQLiteError::Kind::locked:
            return found.isLocked ? ItemVerdict::held : ItemVerdict::couldNotLook;
        case SQLiteError::Kind::damaged:
        case SQLiteError::Kind::statement:
            return ItemVerdict::notUnderstood;
        default:
            return ItemVerdict::couldNotLook;
    }
}

std::string damagedTable(const DatabaseInspection& found) {
    for (const TableFinding& table : found.tables) {
        if (!table.rows || !table.isWhole) {
            return "a part of its table '" + table.name + "' is damaged";
        }
    }
    return {};
}

Obstacle obstacleToReading(const DatabaseInspection& found, const fs::path& file) {
    const auto because = [&file](ItemVerdict verdict, std::string detail) {
        return ItemObstacle{verdict, file, std::move(detail)};
    };
    if (found.readError) {
        const fs::filesystem_error error("cannot read", file, found.readError);
        return because(ItemVerdict::couldNotLook, withKind(error));
    }
    if (found.refusedCompanion) {
        return because(ItemVerdict::couldNotLook, "beside it lies no regular file with one name: " +
                                                      found.refusedCompanion->string());
    }
    if (found.resultCode != 0) {
        const SQLiteError error(found.message, found.resultCode);
        return because(verdictOfCode(found),
                       found.message.empty() ? "a part of it is damaged" : withKind(error));
    }
    if (!found.isOfOneMoment) {
        return because(ItemVerdict::couldNotLook, "it kept changing while it was read");
    }
    auto damage = damagedTable(found);
    return damage.empty() ? Obstacle() : because(ItemVerdict::notUnderstood, std::move(damage));
}

ItemExamination ofDatabase(const DatabaseInspection& found, const fs::path& file) {
    ItemExamination examination;
    if (!found.exists || isFolder(file)) {
        examination.toSeeing = found.exists ? Obstacle() : obstacleToOpening(file);
        return examination;
    }
    if (!found.isRegularFile) {
        examination.toSeeing = {ItemVerdict::couldNotLook, file, "it is not a regular file"};
        return examination;
    }
    examination.toSeeing = obstacleToReading(found, file);
    examination.rows = found.rows();
    examination.isLocked = found.isLocked;
    if (found.writeError) {
        const fs::filesystem_error error("cannot change", file, found.writeError);
        examination.toDeleting = {ItemVerdict::couldNotDelete, file, withKind(error)};
    }
    return examination;
}

/** Why one of Safari's cookie files cannot be counted, or rewritten where there are filters. */
Obstacle obstacleToCookies(const fs::path& file, const FileManager& fileManager, bool isFiltered) {
    try {
        const Bytes contents = fileManager.contents(file);
        const auto cookies = BinaryDataDecoder().decode<BinaryCookies>(contents);
        if (isFiltered) {
            BinaryDataEncoder().encode(cookies);
        }
        return std::nullopt;
    } catch (const OperationCancelled&) {
        throw;
    } catch (const fs::filesystem_error& error) {
        return ItemObstacle{ItemVerdict::couldNotLook, file, withKind(error)};
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return ItemObstacle{ItemVerdict::notUnderstood, file,
                            withKind(FailureKind::notUnderstood, error.what())};
    }
}

ItemExamination ofCookies(const CleanableSafariCookies& cookies, bool isFiltered) {
    ItemExamination examination;
    for (const CleanableDataLocation& place : cookies.locations()) {
        auto obstacle = obstacleToOpening(place.path);
        const bool isThere = cookies.fileManager()->fileExists(place.path).isFile();
        if (!obstacle && isThere) {
            obstacle = obstacleToCookies(place.path, *cookies.fileManager(), isFiltered);
        }
        if (!examination.toSeeing) {
            examination.toSeeing = std::move(obstacle);
        }
        const auto error = posix::errorOfWritingInto(place.path.parent_path());
        if (isThere && error && !examination.toDeleting) {
            const fs::filesystem_error denied("cannot change", place.path, error);
            examination.toDeleting = {ItemVerdict::couldNotDelete, place.path, withKind(denied)};
        }
    }
    return examination;
}

fs::path fileOf(const CleanableData& item) {
    const auto places = item.locations();
    return places.empty() ? fs::path() : places.front().path;
}

std::int64_t allocatedBytesOfDatabase(const fs::path& file) {
    constexpr std::array<std::string_view, 4> parts{"", "-wal", "-shm", "-journal"};
    std::int64_t sum = 0;
    for (const std::string_view part : parts) {
        sum += posix::allocatedBytes(fs::path(file) += part);
    }
    return sum;
}

}  // namespace

std::optional<ItemObstacle> obstacleToOpening(const fs::path& path) {
    try {
        const Accessibility found = accessibility(path);
        if (found == Accessibility::reachable || found == Accessibility::missing) {
            return std::nullopt;
        }
        return ItemObstacle{ItemVerdict::couldNotLook, path,
                            withKind(FailureKind::noPermission, explanation(found))};
    } catch (const fs::filesystem_error& error) {
        return ItemObstacle{ItemVerdict::couldNotLook, path, withKind(error)};
    }
}

ItemExamination examine(const CleanableData& item, CleanableDataFilters filters) {
    if (const auto* const database = dynamic_cast<const InspectableDatabase*>(&item)) {
        return ofDatabase(database->inspect(filters), fileOf(item));
    }
    if (const auto* const cookies = dynamic_cast<const CleanableSafariCookies*>(&item)) {
        return ofCookies(*cookies, !filters.empty());
    }
    ItemExamination examination;
    for (const CleanableDataLocation& place : item.locations()) {
        if (!examination.toSeeing) {
            examination.toSeeing = obstacleToOpening(place.path);
        }
    }
    return examination;
}

std::optional<CleanableDataSize> sizeWithoutCopy(const CleanableData& item,
                                                 CleanableDataFilters filters) {
    const auto* const database = dynamic_cast<const InspectableDatabase*>(&item);
    if (database == nullptr) {
        return std::nullopt;
    }
    const DatabaseInspection found = database->inspect(filters);
    const auto rows = found.wasReadWhole() ? found.rows() : std::nullopt;
    if (!rows) {
        return std::nullopt;
    }
    const std::int64_t bytes = *rows > 0 ? posix::factsOf(fileOf(item)).size : 0;
    return CleanableDataSize{*rows, {bytes, *rows > 0}};
}

std::int64_t allocatedBytes(const CleanableData& item, OperationControl* control) {
    std::int64_t sum = 0;
    for (const CleanableDataLocation& place : item.locations()) {
        if (place.kind == Kind::folder) {
            sum += posix::allocatedBytesBelow(place.path, control);
        } else if (place.kind == Kind::file) {
            sum += posix::allocatedBytes(place.path);
        } else {
            sum += allocatedBytesOfDatabase(place.path);
        }
    }
    return sum;
}

std::int64_t allocatedBytes(const fs::path& place, OperationControl* control) {
    return isFolder(place) ? posix::allocatedBytesBelow(place, control)
                           : allocatedBytesOfDatabase(place);
}

}  // namespace browsersweep
