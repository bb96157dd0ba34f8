#include "browsersweep/hosting/ItemEntries.h"

#include <cstdint>

#include "browsersweep/cleanable/CleanableDirectory.h"
#include "browsersweep/cookies/CleanableSafariCookies.h"
#include "browsersweep/sqlite/DatabaseInspection.h"

namespace browsersweep {
namespace {

using Measurement = CleanableDataSize::Measurement;
using Entries = std::vector<ItemEntry>;

std::filesystem::path placeOf(const CleanableData& item) {
    const auto places = item.locations();
    return places.empty() ? std::filesystem::path() : places.front().path;
}

Entries ofDirectory(const CleanableDirectory& directory, CleanableDataFilters filters) {
    Entries entries;
    for (SelectedFile& file : directory.files(filters)) {
        entries.push_back({std::move(file.path), {}, 1, Measurement{file.bytes}});
    }
    return entries;
}

Entries ofDatabase(const DatabaseInspection& found, const std::filesystem::path& file) {
    Entries entries;
    for (const TableFinding& table : found.tables) {
        const Measurement rows = table.rows ? Measurement{*table.rows} : Measurement{0, true};
        if (table.exists && rows != Measurement{0}) {
            entries.push_back({file, table.name, rows, std::nullopt});
        }
    }
    return entries;
}

void add(std::filesystem::path path, const CleanableDataSize& size, Entries& entries) {
    if (size != CleanableDataSize::zero) {
        entries.push_back({std::move(path), {}, size.itemCount, size.byteCount});
    }
}

}  // namespace

Entries entriesOf(const CleanableData& item, CleanableDataFilters filters) {
    if (const auto* const directory = dynamic_cast<const CleanableDirectory*>(&item)) {
        return ofDirectory(*directory, filters);
    }
    if (const auto* const database = dynamic_cast<const InspectableDatabase*>(&item)) {
        return ofDatabase(database->inspect(filters), placeOf(item));
    }
    Entries entries;
    if (const auto* const cookies = dynamic_cast<const CleanableSafariCookies*>(&item)) {
        for (auto& [file, size] : cookies->sizesOfFiles(filters)) {
            add(file, size, entries);
        }
        return entries;
    }
    add(placeOf(item), item.size(filters), entries);
    return entries;
}

}  // namespace browsersweep
