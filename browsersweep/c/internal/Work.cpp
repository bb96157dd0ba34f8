#include "browsersweep/c/internal/Work.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "browsersweep/hosting/FilterDivision.h"
#include "browsersweep/sqlite/FilterFault.h"

namespace browsersweep::c {
namespace {

constexpr unsigned allOptions = BROWSERSWEEP_IGNORE_ERRORS | BROWSERSWEEP_STRICT;

std::vector<SweepItem> chosenItems(const browsersweep_data& data,
                                   browsersweep_categories categories) {
    std::vector<SweepItem> items;
    std::copy_if(
        data.items.begin(), data.items.end(), std::back_inserter(items),
        [categories](const SweepItem& item) { return (categories & setOf(item.category)) != 0; });
    return items;
}

/** Those of Safari's history nest deeper than any other. */
FilteredStatement deepestStatement(const std::vector<SweepItem>& items) {
    const bool isDeep = std::any_of(items.begin(), items.end(), [](const SweepItem& item) {
        return filteredStatement(item.profile->sourceBrowser(), item.category) ==
               FilteredStatement::ofSafariHistory;
    });
    return isDeep ? FilteredStatement::ofSafariHistory : FilteredStatement::ofTable;
}

}  // namespace

Work workOf(const browsersweep_data& data, browsersweep_categories categories,
            const browsersweep_filters* filters, unsigned options) {
    if ((options & ~allOptions) != 0) {
        throw std::invalid_argument("options has bits that mean nothing");
    }
    Work work;
    if (filters != nullptr) {
        work.how.filters = filters->list;
    }
    work.how.ignoresErrors = (options & BROWSERSWEEP_IGNORE_ERRORS) != 0;
    work.how.control = data.control;
    work.items = chosenItems(data, categories);
    if (filterFault(work.how.filters, deepestStatement(work.items))) {
        throw std::invalid_argument("the filters are more, or longer, than databases take");
    }
    if ((options & BROWSERSWEEP_STRICT) != 0) {
        for (SweepItem& item : work.items) {
            item.data = divide(item.data, work.how.filters).seen;
        }
    }
    return work;
}

Progress::Progress(const browsersweep_data& data, browsersweep_progress function, void* context)
    : control_(data.control), function_(function), context_(context) {
    control_->restart([this](const OperationProgress&) { return !mayGoOn(); });
}

Progress::~Progress() {
    control_->restart({});
}

bool Progress::begin(const SweepItem& next, std::size_t done, std::size_t total) {
    category_ = static_cast<browsersweep_category>(next.category);
    done_ = done;
    total_ = total;
    return mayGoOn();
}

ItemSweep::Progress Progress::asFunction() {
    return [this](const SweepItem& next, std::size_t done, std::size_t total) {
        return begin(next, done, total);
    };
}

bool Progress::mayGoOn() {
    saidStop_ =
        saidStop_ || (function_ != nullptr && !function_(context_, category_, done_, total_));
    return !saidStop_;
}

}  // namespace browsersweep::c
