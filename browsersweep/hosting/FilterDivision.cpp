#include "browsersweep/hosting/FilterDivision.h"

#include <memory>

#include "browsersweep/cleanable/CleanableData.h"
#include "browsersweep/sqlite/CleanableSQLiteDatabase.h"

namespace browsersweep {
namespace {

using Item = CleanableDataList::Item;
using Parts = std::vector<CleanableDataPart>;

/** Stands for an item of which nothing is to be taken. */
class NothingSelected : public CleanableData {
public:
    bool requiresClosedBrowserToClean() const noexcept override { return false; }
    CleanableDataSize size(CleanableDataFilters /*filters*/) const override {
        return CleanableDataSize::zero;
    }
    void clean(CleanableDataFilters /*filters*/) const override {}
};

/** One item again of tables of a database, which is then opened once. */
Item databaseOf(const CleanableSQLiteDatabase& whole, const Parts& parts) {
    std::vector<SQLiteStatementComponents> tables;
    for (const CleanableDataPart& part : parts) {
        if (const auto* const own = dynamic_cast<const CleanableSQLiteDatabase*>(part.data.get())) {
            tables.insert(tables.end(), own->components().begin(), own->components().end());
        }
    }
    return std::make_shared<CleanableSQLiteDatabase>(whole.file(), std::move(tables),
                                                     whole.fileManager());
}

Item itemOf(const Item& whole, const Parts& parts) {
    if (parts.size() == 1) {
        return parts.front().data;
    }
    if (const auto* const database = dynamic_cast<const CleanableSQLiteDatabase*>(whole.get())) {
        return databaseOf(*database, parts);
    }
    std::vector<Item> items;
    for (const CleanableDataPart& part : parts) {
        items.push_back(part.data);
    }
    return std::make_shared<CleanableDataList>(std::move(items));
}

}  // namespace

FilterDivision divide(const Item& item, CleanableDataFilters filters) {
    const FilterSight asked = partsOf(filters);
    if (!asked.any()) {
        return {item, nullptr, {}, {}};
    }
    Parts seen;
    Parts unseen;
    FilterDivision division;
    for (CleanableDataPart& part : item->parts()) {
        const FilterSight missing = asked.without(part.sight);
        division.blindTo = division.blindTo.with(missing);
        if (missing.any() && !part.table.empty()) {
            division.tables.push_back(part.table);
        }
        (missing.any() ? unseen : seen).push_back(std::move(part));
    }
    if (seen.empty()) {
        division.blindTo = unseen.empty() ? asked : division.blindTo;
        division.seen = std::make_shared<NothingSelected>();
        division.unseen = item;
        return division;
    }
    division.seen = itemOf(item, seen);
    division.unseen = unseen.empty() ? nullptr : itemOf(item, unseen);
    return division;
}

}  // namespace browsersweep
