#include "browsersweep/cleanable/CleanableData.h"

namespace browsersweep {

CleanableData::~CleanableData() = default;

std::vector<CleanableDataLocation> CleanableData::locations() const {
    return {};
}

std::vector<CleanableDataPart> CleanableData::parts() const {
    return {};
}

CleanableDataSize CleanableData::sizeIgnoringErrors(CleanableDataFilters filters) const noexcept {
    try {
        return size(filters);
    } catch (...) {  // an item may be anybody's, and so may be its errors
        return {{0, true}, {0, true}};
    }
}

void CleanableData::cleanIgnoringErrors(CleanableDataFilters filters) const noexcept {
    try {
        clean(filters);
    } catch (...) {  // NOLINT(bugprone-empty-catch): dropping it is what the caller asked for
    }
}

CleanableDataSize CleanableData::size() const {
    return size(CleanableDataFilters{});
}

CleanableDataSize CleanableData::sizeIgnoringErrors() const noexcept {
    return sizeIgnoringErrors(CleanableDataFilters{});
}

void CleanableData::clean() const {
    clean(CleanableDataFilters{});
}

void CleanableData::cleanIgnoringErrors() const noexcept {
    cleanIgnoringErrors(CleanableDataFilters{});
}

CleanableDataSize CleanableData::cleanAndReturnSize(CleanableDataFilters filters) const {
    const CleanableDataSize before = size(filters);
    clean(filters);
    return before - size(filters);
}

CleanableDataSize CleanableData::cleanAndReturnSizeIgnoringErrors(
    CleanableDataFilters filters) const noexcept {
    const CleanableDataSize before = sizeIgnoringErrors(filters);
    cleanIgnoringErrors(filters);
    return before - sizeIgnoringErrors(filters);
}

}  // namespace browsersweep
