#include "browsersweep/catalogue/BrowserCleaner.h"

#include <iterator>
#include <utility>

namespace browsersweep {

BrowserCleaner::~BrowserCleaner() = default;

CleanableDataMap BrowserCleaner::cleanableData(const ProfilePredicate& shouldIncludeProfile) const {
    CleanableDataMap gathered;
    for (const auto& profile : profileReader().profiles()) {
        if (shouldIncludeProfile(*profile)) {
            gathered.merge(profile->cleanableData());
        }
    }
    return gathered;
}

std::vector<Bookmark> BrowserCleaner::bookmarks(
    const ProfilePredicate& shouldIncludeProfile) const {
    std::vector<Bookmark> gathered;
    for (const auto& profile : profileReader().profiles()) {
        if (shouldIncludeProfile(*profile)) {
            auto own = profile->bookmarks();
            gathered.insert(gathered.end(), std::make_move_iterator(own.begin()),
                            std::make_move_iterator(own.end()));
        }
    }
    return gathered;
}

}  // namespace browsersweep
