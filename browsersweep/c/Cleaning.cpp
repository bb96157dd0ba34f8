// The part of the C interface that filters, measures and cleans.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "browsersweep/c/internal/Handles.h"

namespace bs = browsersweep;
using namespace browsersweep::c;

namespace {

/** Patterns stand in SQL texts as they are: what would change such a text is refused. */
bool isPlain(std::string_view pattern) noexcept {
    return !pattern.empty() && std::none_of(pattern.begin(), pattern.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7f || character == '\'' || character == '%' ||
               character == '_';
    });
}

bs::CleanableDataFilter::Patterns patternsOf(const browsersweep_patterns& given) {
    using Patterns = bs::CleanableDataFilter::Patterns;
    Patterns patterns{given.include ? Patterns::Rule::include : Patterns::Rule::exclude, {}};
    if (given.count > 0) {
        required(given.patterns, "patterns");
    }
    for (std::size_t i = 0; i < given.count; ++i) {
        const std::string_view pattern = &required(given.patterns[i], "a pattern");
        if (!isPlain(pattern)) {
            throw std::invalid_argument(
                "a pattern is empty or holds ', %, _ or a control character");
        }
        patterns.patterns.emplace(pattern);
    }
    return patterns;
}

bs::CleanableDataFilter::Dates datesOf(const browsersweep_dates& given) {
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
    return {size.itemCount.value, size.byteCount.value, size.itemCount.isApproximate,
            size.byteCount.isApproximate};
}

/** One run through the items of the chosen categories, telling its progress between two of them. */
class Run {
public:
    Run(const browsersweep_data& data, browsersweep_categories categories,
        const browsersweep_filters* filters, bool ignoresErrors)
        : ignoresErrors_(ignoresErrors) {
        if (filters != nullptr) {
            filters_ = filters->list;
        }
        for (const auto& [category, list] : data.map.lists()) {
            if ((categories & setOf(category)) != 0) {
                for (const auto& item : list.items()) {
                    pieces_.push_back({category, item});
                }
            }
        }
    }

    /** Says how many times the items will be gone through, and whom to tell. */
    void tell(browsersweep_progress progress, void* context, std::size_t rounds) {
        progress_ = progress;
        context_ = context;
        total_ = pieces_.size() * rounds;
    }

    bs::CleanableDataSize size() {
        bs::CleanableDataSize sum;
        for (const auto& piece : pieces_) {
            step(piece.category);
            sum = sum + (ignoresErrors_ ? piece.item->sizeIgnoringErrors(filters_)
                                        : piece.item->size(filters_));
        }
        return sum;
    }

    void clean() {
        for (const auto& piece : pieces_) {
            step(piece.category);
            if (ignoresErrors_) {
                piece.item->cleanIgnoringErrors(filters_);
            } else {
                piece.item->clean(filters_);
            }
        }
    }

private:
    struct Piece {
        bs::CleanableDataCategory category;
        bs::CleanableDataList::Item item;
    };

    void step(bs::CleanableDataCategory category) {
        if (progress_ != nullptr &&
            !progress_(context_, static_cast<browsersweep_category>(category), done_, total_)) {
            throw Cancelled();
        }
        ++done_;
    }

    bool ignoresErrors_;
    std::vector<bs::CleanableDataFilter> filters_;
    std::vector<Piece> pieces_;
    browsersweep_progress progress_ = nullptr;
    void* context_ = nullptr;
    std::size_t done_ = 0;
    std::size_t total_ = 0;
};

bool ignoresErrors(unsigned options) {
    if ((options & ~static_cast<unsigned>(BROWSERSWEEP_IGNORE_ERRORS)) != 0) {
        throw std::invalid_argument("options has bits that mean nothing");
    }
    return options != 0;
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
        return handedOver(browsersweep_data{cleanerOf(home, browser)->cleanableData(everyProfile)});
    });
}

browsersweep_data* browsersweep_data_of_profile(const browsersweep_profiles* profiles, size_t index,
                                                browsersweep_error** error) {
    return guarded(error, [&] {
        return handedOver(browsersweep_data{profileAt(profiles, index).cleanableData()});
    });
}

browsersweep_categories browsersweep_data_categories(const browsersweep_data* data) {
    browsersweep_categories categories = 0;
    if (data != nullptr) {
        for (const auto& entry : data->map.lists()) {
            categories |= setOf(entry.first);
        }
    }
    return categories;
}

bool browsersweep_data_requires_closed_browser(const browsersweep_data* data,
                                               browsersweep_categories categories) {
    if (data == nullptr) {
        return false;
    }
    const auto& lists = data->map.lists();
    return std::any_of(lists.begin(), lists.end(), [&](const auto& entry) {
        return (categories & setOf(entry.first)) != 0 &&
               entry.second.requiresClosedBrowserToClean();
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
        Run run(required(data, "data"), categories, filters, ignoresErrors(options));
        run.tell(progress, context, 1);
        required(size, "size") = plainSize(run.size());
        return true;
    });
}

bool browsersweep_data_clean(const browsersweep_data* data, browsersweep_categories categories,
                             const browsersweep_filters* filters, unsigned options,
                             browsersweep_progress progress, void* context,
                             browsersweep_size* removed, browsersweep_error** error) {
    return guarded(error, [&] {
        Run run(required(data, "data"), categories, filters, ignoresErrors(options));
        run.tell(progress, context, removed == nullptr ? 1 : 3);
        if (removed == nullptr) {
            run.clean();
            return true;
        }
        const auto before = run.size();
        run.clean();
        *removed = plainSize(before - run.size());
        return true;
    });
}
