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

constexpr const char* allAddresses = "SELECT url FROM moz_places WHERE url IS NOT NULL";

// "https://example.com/page" has "https://example.com/favicon.ico".
std::string rootIconOf(std::string_view address) {
    const auto host = address.find("://");
    if (host == std::string_view::npos) {
        return std::string(address);
    }
    const auto path = std::min(address.find_first_of("/?#", host + 3), address.size());
    return std::string(address.substr(0, path)) + "/favicon.ico";
}

/** Begins anew where the database was changed meanwhile. */
void visitRows(const std::filesystem::path& places,
               const std::shared_ptr<const FileManager>& fileManager, const char* question,
               const std::function<void()>& begin,
               const std::function<void(std::string_view)>& visit) {
    if (!std::filesystem::exists(std::filesystem::symlink_status(places))) {
        return;
    }
    const bool isOfOneMoment = DatabaseSnapshot(places, fileManager).read([&](const auto& opened) {
        begin();
        DatabaseQuery query(opened.dbPointer(), question, fileManager->control().get());
        while (query.next()) {
            visit(query.text(0));
        }
    });
    if (!isOfOneMoment) {
        throw SQLiteError("the database changes without pause", SQLITE_BUSY);
    }
}

}  // namespace

ProtectedAddresses heldPlaces(const std::filesystem::path& places,
                              const std::shared_ptr<const FileManager>& fileManager) {
    ProtectedAddresses addresses;
    const auto begin = [&addresses] { addresses.clear(); };
    const auto add = [&addresses](std::string_view address) {
        addresses.emplace(address);
        addresses.insert(rootIconOf(address));
    };
    visitRows(places, fileManager, heldAddresses, begin, add);
    return addresses;
}

void visitPlaces(const std::filesystem::path& places,
                 const std::shared_ptr<const FileManager>& fileManager,
                 const std::function<void(std::string_view)>& visit) {
    const auto begin = [] {};
    visitRows(places, fileManager, allAddresses, begin, visit);
}

}  // namespace browsersweep
