// The part of the C interface that filters, measures and cleans.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "browsersweep/c/internal/Handles.h"
#include "browsersweep/hosting/ItemSweep.h"
#include "browsersweep/hosting/PatternFault.h"

namespace bs = browsersweep;
using namespace browsersweep::c;

namespace {

/** What callers compiled with the first version of a structure know of it: up to its last field. */
constexpr std::size_t firstSize(const browsersweep_patterns& /*of*/) noexcept {
    return offsetof(browsersweep_patterns, count) + sizeof(size_t);
}
constexpr std::size_t firstSize(const browsersweep_dates& /*of*/) noexcept {
    return offsetof(browsersweep_dates, end_date) + sizeof(double);
}
constexpr std::size_t firstSize(const browsersweep_size& /*of*/) noexcept {
    return offsetof(browsersweep_size, bytes_are_approximate) + sizeof(bool);
}

template <typename Structure>
std::size_t commonSize(const Structure& theirs) {
    if (theirs.struct_size < firstSize(theirs)) {
        throw std::invalid_argument("the struct_size of a structure is not set to its size");
    }
    return std::min(theirs.struct_size, sizeof(Structure));
}

/** What a caller gives, as far as both sides know it. The rest is zero. */
template <typename Structure>
Structure taken(const Structure& theirs) {
    Structure ours{};
    std::memcpy(&ours, &theirs, commonSize(theirs));
    return ours;
}

/** Gives a caller as much as it knows of. */
template <typename Structure>
void give(Structure& theirs, Structure ours) {
    const std::size_t size = commonSize(theirs);
    ours.struct_size = theirs.struct_size;
    std::memcpy(&theirs, &ours, size);
}

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

constexpr browsersweep_categories setOf(bs::CleanableDataCategory category) noexcept {
    return browsersweep_categories{1} << static_cast<unsigned>(category);
}

browsersweep_size plainSize(const bs::CleanableDataSize& size) noexcept {
    return {sizeof(browsersweep_size), size.itemCount.value, size.byteCount.value,
            size.itemCount.isApproximate, size.byteCount.isApproximate};
}

std::vector<bs::SweepItem> chosenItems(const browsersweep_data& data,
                                       browsersweep_categories categories) {
    std::vector<bs::SweepItem> items;
    std::copy_if(data.items.begin(), data.items.end(), std::back_inserter(items),
                 [categories](const bs::SweepItem& item) {
                     return (categories & setOf(item.category)) != 0;
                 });
    return items;
}

/** One call's way to the progress function, which is asked between the items and within them. */
class Progress {
public:
    Progress(const browsersweep_data& data, browsersweep_progress function, void* context)
        : control_(data.control), function_(function), context_(context) {
        control_->restart([this](const bs::OperationProgress&) { return !mayGoOn(); });
    }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { control_->restart({}); }

    bool begin(const bs::SweepItem& next, std::size_t done, std::size_t total) {
        category_ = static_cast<browsersweep_category>(next.category);
        done_ = done;
        total_ = total;
        return mayGoOn();
    }

    /** Whether the function has stopped the call. */
    bool saidStop() const noexcept { return saidStop_; }

    bs::ItemSweep::Progress asFunction() {
        return [this](const bs::SweepItem& next, std::size_t done, std::size_t total) {
            return begin(next, done, total);
        };
    }

private:
    bool mayGoOn() {
        saidStop_ =
            saidStop_ || (function_ != nullptr && !function_(context_, category_, done_, total_));
        return !saidStop_;
    }

    std::shared_ptr<bs::OperationControl> control_;
    browsersweep_progress function_;
    void* context_;
    browsersweep_category category_ = BROWSERSWEEP_CACHE;
    std::size_t done_ = 0;
    std::size_t total_ = 0;
    bool saidStop_ = false;
};

bs::SweepOptions sweepOptions(const browsersweep_data& data, const browsersweep_filters* filters,
                              unsigned options) {
    if ((options & ~static_cast<unsigned>(BROWSERSWEEP_IGNORE_ERRORS)) != 0) {
        throw std::invalid_argument("options has bits that mean nothing");
    }
    bs::SweepOptions chosen;
    if (filters != nullptr) {
        chosen.filters = filters->list;
    }
    chosen.ignoresErrors = options != 0;
    chosen.control = data.control;
    return chosen;
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
        auto how = sweepOptions(chosen, filters, options);
        Progress asked(chosen, progress, context);
        bs::ItemSweep sweep(chosenItems(chosen, categories), std::move(how), asked.asFunction());
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
        auto how = sweepOptions(chosen, filters, options);
        if (removed != nullptr) {
            commonSize(*removed);  // asked before anything is deleted
        }
        Progress asked(chosen, progress, context);
        bs::ItemSweep sweep(chosenItems(chosen, categories), std::move(how), asked.asFunction());
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
