#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/base/OperationControl.h"
#include "browsersweep/catalogue/BrowserCleaner.h"
#include "browsersweep/cleanable/CleanableDataCategory.h"
#include "browsersweep/cleanable/CleanableDataFilter.h"
#include "browsersweep/cleanable/CleanableDataList.h"
#include "browsersweep/cleanable/CleanableDataSize.h"
#include "browsersweep/hosting/ItemEvidence.h"
#include "browsersweep/hosting/ItemVerdict.h"
#include "browsersweep/profiles/BrowserProfile.h"

namespace browsersweep {

/** One item of a browser's data with what it belongs to. */
struct SweepItem {
    std::shared_ptr<const BrowserProfile> profile;  ///< whose data it is; never null
    CleanableDataCategory category = CleanableDataCategory::cache;  ///< its kind
    CleanableDataList::Item data;                                   ///< never null
};

/** The items of one profile, category after category. Throws what the profile throws. */
BROWSERSWEEP_EXPORT std::vector<SweepItem> sweepItems(
    const std::shared_ptr<const BrowserProfile>& profile);

/**
 * The items of a browser's chosen profiles in the order of `BrowserCleaner::cleanableData`:
 * category after category, in each of them profile after profile. Throws what reading the profiles
 * throws.
 */
BROWSERSWEEP_EXPORT std::vector<SweepItem> sweepItems(const BrowserCleaner& cleaner,
                                                      const ProfilePredicate& shouldIncludeProfile);

/** The result of one item. */
struct ItemResult {
    ItemVerdict verdict = ItemVerdict::leftOut;  ///< what became of the item
    /**
     * What was measured, or what is gone: the difference between before and after. Of a clean that
     * was stopped, what is known to be gone, marked approximate. Absent where it is not known.
     */
    std::optional<CleanableDataSize> size;
    std::exception_ptr error;    ///< what failed; null where nothing did
    std::filesystem::path what;  ///< the file or folder, or the one that the verdict is about
    std::string detail;          ///< why the verdict is what it is, for people; may be empty
    bool wasBegun = false;       ///< whether measuring, or in a clean deleting, was begun or failed
    /** What the disk gained; negative where it lost. 0 where the item was stopped. */
    std::int64_t freedBytes = 0;
};

/** The result of a sweep. */
struct SweepResult {
    std::vector<ItemResult> items;  ///< one for each item, in its order
    std::exception_ptr error;       ///< the first of theirs; null where all is done

    /** What all items together have measured or removed, as far as it is known. */
    BROWSERSWEEP_EXPORT CleanableDataSize sum() const noexcept;
};

/** How to sweep. */
struct SweepOptions {
    std::vector<CleanableDataFilter> filters;  ///< none: everything is selected
    bool ignoresErrors = false;  ///< items do what they can and are never said to have failed
    bool keepsGoing = false;     ///< an item that fails does not end the sweep
    /**
     * Each item is examined too, before and after (`examine`), and the verdicts say so where a size
     * takes what cannot be seen for nothing; such sizes are marked approximate. A database that
     * cannot be copied for want of room is counted without a copy; where that cannot be done before
     * a clean, because a transaction waits beside it, the clean itself counts. Takes the control's
     * folders that were left out.
     */
    bool examines = false;
    /** The control of the items' home, whose counts tell what a stopped item had deleted. */
    std::shared_ptr<OperationControl> control;
};

/**
 * Measures or cleans items one by one, so that a host can show where it is, stop it, and tell what
 * became of each. An error ends it at the item that failed, as it would end the items' list.
 */
class BROWSERSWEEP_EXPORT ItemSweep {
public:
    /**
     * Told before each item which one comes next and how many steps of all are done. False stops
     * the sweep there. A control with the same question stops it within an item too.
     */
    using Progress = std::function<bool(const SweepItem& next, std::size_t done, std::size_t all)>;

    /** Nothing is touched yet. Without a function to tell, the sweep goes on to its end. */
    ItemSweep(std::vector<SweepItem> items, SweepOptions options, Progress progress = {});

    /** Measures every item: one step for each. Only reads. */
    SweepResult measure();

    /** Deletes without measuring: one step for each item. Sizes are absent from the result. */
    SweepResult clean();

    /**
     * Measures all items, cleans all, measures all again: three steps for each. Where one fails to
     * be cleaned, what had been begun is measured again all the same.
     */
    SweepResult cleanAndMeasure();

private:
    using State = ItemEvidence;
    using Work = void (ItemSweep::*)(State& state, const SweepItem& item);

    void begin(std::size_t rounds);
    bool goThrough(Work work);
    bool isConcerned(const State& state, Work work) const noexcept;
    bool fail(State& state, Work work);
    void step(const SweepItem& next);
    void takeLeftOut(State& state) const;
    void measureBefore(State& state, const SweepItem& item);
    void cleanOne(State& state, const SweepItem& item);
    void measureAfter(State& state, const SweepItem& item);
    void deleteFrom(State& state, const SweepItem& item) const;
    CleanableDataSize sizeOf(State& state, const SweepItem& item) const;
    static std::optional<CleanableDataSize> whatWasThere(const State& state) noexcept;
    std::optional<CleanableDataSize> figureOf(const State& state) const noexcept;
    ItemResult resultOf(const State& state, const SweepItem& item) const;
    SweepResult finish();

    std::vector<SweepItem> items_;
    SweepOptions options_;
    Progress progress_;
    std::vector<State> states_;
    std::exception_ptr firstError_;
    std::size_t done_ = 0;
    std::size_t all_ = 0;
};

}  // namespace browsersweep
