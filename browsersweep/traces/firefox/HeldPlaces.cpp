#include "browsersweep/traces/firefox/internal/HeldPlaces.h"

#include <algorithm>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "browsersweep/sites/internal/DatabaseQuery.h"
#include "browsersweep/sqlite/SQLiteError.h"
#include "browsersweep/sqlite/internal/DatabaseSnapshot.h"

namespace browsersweep {
namespace {

constexpr const char* heldAddresses =
    "SELECT url FROM moz_places WHERE url IS NOT NULL AND id IN (SELECT fk FROM moz_bookmarks"
    " UNION SELECT place_id FROM moz_keywords)";

// "https://example.com/page" has "https://example.com/favicon.ico".
std::string rootIconOf(std::string_view address) {
    const auto host = address.find("://");
    if (host == std::string_view::npos) {
        return std::string(address);
    }
    const auto path = std::min(address.find_first_of("/?#", host + 3), address.size());
    return std::string(address.substr(0, path)) + "/favicon.ico";
}

}  // namespace

ProtectedAddresses heldPlaces(const std::filesystem::path& places,
                              const std::shared_ptr<const FileManager>& fileManager) {
    ProtectedAddresses addresses;
    if (!std::filesystem::exists(std::filesystem::symlink_status(places))) {
        return addresses;
    }
    const bool isOfOneMoment = DatabaseSnapshot(places, fileManager).read([&](const auto& opened) {
        addresses.clear();
        DatabaseQuery query(opened.dbPointer(), heldAddresses, fileManager->control().get());
        while (query.next()) {
            addresses.emplace(query.text(0));
            addresses.insert(rootIconOf(query.text(0)));
        }
    });
    if (!isOfOneMoment) {
        throw SQLiteError("the database changes without pause", SQLITE_BUSY);
    }
    return addresses;
}

}  // namespace browsersweep
