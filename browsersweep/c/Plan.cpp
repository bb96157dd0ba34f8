// The part of the C interface that lists what a clean would take.

#include <algorithm>
#include <exception>

#include "browsersweep/c/internal/Handles.h"
#include "browsersweep/c/internal/Structures.h"
#include "browsersweep/c/internal/Work.h"
#include "browsersweep/hosting/FilterDivision.h"
#include "browsersweep/hosting/ItemEntries.h"

namespace bs = browsersweep;
using namespace browsersweep::c;

namespace {

using Entry = browsersweep_plan::Entry;

/** Whether an entry goes whatever some part of the filters says. */
bool isUnseen(const bs::ItemEntry& entry, const bs::FilterDivision& division) {
    const auto& tables = division.tables;
    return division.unseen != nullptr &&
           (tables.empty() || std::find(tables.begin(), tables.end(), entry.table) != tables.end());
}

Entry entryOf(const bs::SweepItem& item, const bs::ItemEntry& found, bool isUnseen) {
    return {item.category,
            item.profile->name(),
            item.profile->folder(),
            found.path.string(),
            found.table.empty() ? std::nullopt : std::optional(found.table),
            found.items,
            found.bytes,
            isUnseen};
}

/** What could not be looked into is no part of the plan that anybody should take for nothing. */
bs::ItemEntry unknownOf(const bs::CleanableData& item) {
    const auto places = item.locations();
    return {places.empty() ? std::filesystem::path() : places.front().path,
            {},
            {0, true},
            bs::CleanableDataSize::Measurement{0, true}};
}

/** Measured first, since a database that cannot be read has no tables to list. */
std::vector<bs::ItemEntry> entriesOf(const bs::CleanableData& item, const bs::SweepOptions& how) {
    try {
        item.size(how.filters);
        return bs::entriesOf(item, how.filters);
    } catch (const bs::OperationCancelled&) {
        throw;
    } catch (const std::exception&) {
        if (!how.ignoresErrors) {
            throw;
        }
        return {unknownOf(item)};
    }
}

void add(const bs::SweepItem& item, const bs::SweepOptions& how, browsersweep_plan& plan) {
    const auto division = bs::divide(item.data, how.filters);
    for (const bs::ItemEntry& found : entriesOf(*item.data, how)) {
        plan.entries.push_back(entryOf(item, found, isUnseen(found, division)));
    }
}

browsersweep_entry plainEntry(const Entry& entry) {
    const auto bytes = entry.bytes.value_or(bs::CleanableDataSize::Measurement{});
    return {sizeof(browsersweep_entry), static_cast<browsersweep_category>(entry.category),
            textOf(entry.profile),      textOf(entry.folder),
            entry.path.c_str(),         textOf(entry.table),
            entry.items.value,          bytes.value,
            entry.items.isApproximate,  bytes.isApproximate,
            entry.bytes.has_value(),    entry.isUnseen};
}

}  // namespace

browsersweep_plan* browsersweep_plan_of_data(const browsersweep_data* data,
                                             browsersweep_categories categories,
                                             const browsersweep_filters* filters, unsigned options,
                                             browsersweep_progress progress, void* context,
                                             browsersweep_error** error) {
    return guarded(error, [&] {
        const auto& chosen = required(data, "data");
        const Work work = workOf(chosen, categories, filters, options);
        Progress asked(chosen, progress, context);
        browsersweep_plan plan;
        for (std::size_t i = 0; i < work.items.size(); ++i) {
            if (!asked.begin(work.items[i], i, work.items.size())) {
                throw bs::OperationCancelled({});
            }
            add(work.items[i], work.how, plan);
        }
        return handedOver(std::move(plan));
    });
}

size_t browsersweep_plan_count(const browsersweep_plan* plan) {
    return plan == nullptr ? 0 : plan->entries.size();
}

bool browsersweep_plan_entry(const browsersweep_plan* plan, size_t index,
                             browsersweep_entry* entry) {
    const auto* const found = plan == nullptr ? nullptr : entryAt(&plan->entries, index);
    if (found == nullptr || entry == nullptr || entry->struct_size < firstSize(*entry)) {
        return false;
    }
    give(*entry, plainEntry(*found));
    return true;
}

void browsersweep_plan_free(browsersweep_plan* plan) {
    takeBack(plan);
}
