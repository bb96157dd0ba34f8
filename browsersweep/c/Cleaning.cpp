// The part of the C interface that filters, measures and cleans.

#include <algorithm>
#include <exception>
#include <string_view>
#include <utility>

#include "browsersweep/c/internal/Handles.h"
#include "browsersweep/c/internal/Structures.h"
#include "browsersweep/c/internal/Work.h"
#include "browsersweep/hosting/ItemSweep.h"
#include "browsersweep/hosting/PatternFault.h"

namespace bs = browsersweep;
using namespace browsersweep::c;

namespace {

bs::CleanableDataFilter::Patterns patternsOf(const browsersweep_patterns& theirs) {
    const browsersweep_patterns given = taken(theirs);
    using Patterns = bs::CleanableDataFilter::Patterns;
    Patterns patterns{given.include ? Patterns::Rule::include : Patterns::Rule::exclude, {}};
    if (given.count > 0) {
        required(given.patterns, "patterns");
    }
    for (std::size_t i = 0; i < given.count; ++i) {
        const std::string_view pattern = &required(given.patterns[i], "a pattern");
        if (bs::patternFault(pattern)) {
            throw std::invalid_argument(
                "a pattern is empty, not UTF-8, or holds ', %, _ or a control character");
        }
        patterns.patterns.emplace(pattern);
    }
    return patterns;
}

bs::CleanableDataFilter::Dates datesOf(const browsersweep_dates& theirs) {
    const browsersweep_dates given = taken(theirs);
    using Dates = bs::CleanableDataFilter::Dates;
    Dates dates;
    dates.rule = given.outside ? Dates::Rule::outsideRange : Dates::Rule::insideRange;
    if (given.has_start) {
        dates.startDate = bs::dateFrom1970Seconds(given.start_date);
    }
    if (given.has_end) {
        dates.endDate = bs::dateFrom1970Seconds(given.end_date);
    }
    return dates;
}

browsersweep_size plainSize(const bs::CleanableDataSize& size) noexcept {
    return {sizeof(browsersweep_size), size.itemCount.value, size.byteCount.value,
            size.itemCount.isApproximate, size.byteCount.isApproximate};
}

void rethrowIfFailed(const bs::SweepResult& result) {
    if (result.error) {
        std::rethrow_exception(result.error);
    }
}

}  // namespace

browsersweep_filters* browsersweep_filters_new(browsersweep_error** error) {
    return guarded(error, [] { return handedOver(browsersweep_filters{}); });
}

bool browsersweep_filters_add(browsersweep_filters* filters, const browsersweep_patterns* patterns,
                              const browsersweep_dates* dates, browsersweep_error** error) {
    return guarded(error, [&] {
        bs::CleanableDataFilter filter;
        if (patterns != nullptr) {
            filter.patternsData = patternsOf(*patterns);
        }
        if (dates != nullptr) {
            filter.datesData = datesOf(*dates);
        }
        required(filters, "filters").list.push_back(std::move(filter));
        return true;
    });
}

void browsersweep_filters_free(browsersweep_filters* filters) {
    takeBack(filters);
}

browsersweep_data* browsersweep_data_of_browser(const browsersweep_home* home,
                                                browsersweep_browser browser,
                                                browsersweep_error** error) {
    return guarded(error, [&] {
        auto control = std::make_shared<bs::OperationControl>();
        return handedOver(browsersweep_data{
            bs::sweepItems(*cleanerOf(home, browser, control), everyProfile), control});
    });
}

browsersweep_data* browsersweep_data_of_profile(const browsersweep_profiles* profiles, size_t index,
                                                browsersweep_error** error) {
    return guarded(error, [&] {
        const auto& profile = profileAt(profiles, index);
        return handedOver(browsersweep_data{bs::sweepItems(profile), profiles->control});
    });
}

browsersweep_categories browsersweep_data_categories(const browsersweep_data* data) {
    browsersweep_categories categories = 0;
    if (data != nullptr) {
        for (const auto& item : data->items) {
            categories |= setOf(item.category);
        }
    }
    return categories;
}

bool browsersweep_data_requires_closed_browser(const browsersweep_data* data,
                                               browsersweep_categories categories) {
    if (data == nullptr) {
        return false;
    }
    return std::any_of(data->items.begin(), data->items.end(), [&](const auto& item) {
        return (categories & setOf(item.category)) != 0 &&
               item.data->requiresClosedBrowserToClean();
    });
}

void browsersweep_data_free(browsersweep_data* data) {
    takeBack(data);
}

bool browsersweep_data_size(const browsersweep_data* data, browsersweep_categories categories,
                            const browsersweep_filters* filters, unsigned options,
                            browsersweep_progress progress, void* context, browsersweep_size* size,
                            browsersweep_error** error) {
    return guarded(error, [&] {
        const auto& chosen = required(data, "data");
        auto& place = required(size, "size");
        commonSize(place);
        auto work = workOf(chosen, categories, filters, options);
        Progress asked(chosen, progress, context);
        bs::ItemSweep sweep(std::move(work.items), std::move(work.how), asked.asFunction());
        const auto result = sweep.measure();
        rethrowIfFailed(result);
        give(place, plainSize(result.sum()));
        return true;
    });
}

bool browsersweep_data_clean(const browsersweep_data* data, browsersweep_categories categories,
                             const browsersweep_filters* filters, unsigned options,
                             browsersweep_progress progress, void* context,
                             browsersweep_size* removed, browsersweep_error** error) {
    return guarded(error, [&] {
        const auto& chosen = required(data, "data");
        auto work = workOf(chosen, categories, filters, options);
        if (removed != nullptr) {
            commonSize(*removed);  // asked before anything is deleted
        }
        Progress asked(chosen, progress, context);
        bs::ItemSweep sweep(std::move(work.items), std::move(work.how), asked.asFunction());
        if (removed == nullptr) {
            rethrowIfFailed(sweep.clean());
            return true;
        }
        const auto result = sweep.cleanAndMeasure();
        if (!result.error || asked.saidStop()) {
            give(*removed, plainSize(result.sum()));
        }
        rethrowIfFailed(result);
        return true;
    });
}
