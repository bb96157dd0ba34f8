#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "browsersweep/hosting/FilterDivision.h"
#include "browsersweep/hosting/ItemSweep.h"

#include "cli/Gather.h"
#include "cli/Options.h"
#include "cli/Report.h"

namespace browsersweep::cli {

/** What the filters of a command cannot see of some items. */
class Unseen {
public:
    /** Measures what it will be asked about; deletes nothing. */
    Unseen(const std::vector<SweepItem>& items, const Options& options, const Observer& observer);

    /** The items that the command acts on: where it is strict, only what the filters see. */
    const std::vector<SweepItem>& acted() const noexcept { return acted_; }

    /** What is unseen of an item with this result; absent where all of it is seen. */
    std::optional<UnseenRow> rowOf(std::size_t index, const ItemResult& result) const;

private:
    void measure(const Options& options, const Observer& observer);

    bool isStrict_;
    std::vector<SweepItem> acted_;
    std::vector<FilterDivision> divisions_;
    std::vector<std::optional<CleanableDataSize>> sizes_;
};

}  // namespace browsersweep::cli
