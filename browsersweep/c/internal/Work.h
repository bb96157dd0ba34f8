#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "browsersweep/base/OperationControl.h"
#include "browsersweep/c/browsersweep.h"
#include "browsersweep/c/internal/Handles.h"
#include "browsersweep/hosting/ItemSweep.h"

// What measuring, cleaning and planning have in common.

namespace browsersweep::c {

/** The set that holds one category. */
constexpr browsersweep_categories setOf(CleanableDataCategory category) noexcept {
    return browsersweep_categories{1} << static_cast<unsigned>(category);
}

/** What a call acts on, and how. */
struct Work {
    std::vector<SweepItem> items;  ///< of a strict call, what its filters see of them
    SweepOptions how;              ///< with the caller's filters, which may be none
};

/** Throws `std::invalid_argument` for wrong options, and for filters that no database takes. */
Work workOf(const browsersweep_data& data, browsersweep_categories categories,
            const browsersweep_filters* filters, unsigned options);

/** One call's way to the progress function, which is asked between the items and within them. */
class Progress {
public:
    Progress(const browsersweep_data& data, browsersweep_progress function, void* context);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /** Tells of the next item; whether the call is to go on with it. */
    bool begin(const SweepItem& next, std::size_t done, std::size_t total);

    /** Whether the function has stopped the call. */
    bool saidStop() const noexcept { return saidStop_; }

    /** `begin`, for a sweep. */
    ItemSweep::Progress asFunction();

private:
    bool mayGoOn();

    std::shared_ptr<OperationControl> control_;
    browsersweep_progress function_;
    void* context_;
    browsersweep_category category_ = BROWSERSWEEP_CACHE;
    std::size_t done_ = 0;
    std::size_t total_ = 0;
    bool saidStop_ = false;
};

}  // namespace browsersweep::c
