#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/cleanable/CleanableDataDictionary.h"
#include "browsersweep/profiles/Bookmark.h"
#include "browsersweep/profiles/BrowserProfile.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Chooses profiles. It may throw, which ends the operation with its error. */
using ProfilePredicate = std::function<bool(const BrowserProfile&)>;

/** What one browser offers: its name, its profiles, and their data gathered over all of them. */
class BROWSERSWEEP_EXPORT BrowserCleaner {
public:
    BrowserCleaner() = default;
    virtual ~BrowserCleaner();

    /** The browser's name for people, the same text as its `displayName`. */
    virtual std::string_view name() const noexcept = 0;

    /** The application's bundle identifier on macOS. */
    virtual std::string_view bundleIdentifier() const noexcept = 0;

    /** What lists the browser's profiles. */
    virtual const BrowserProfileReader& profileReader() const noexcept = 0;

    /**
     * The data of the chosen profiles by category: the items of the first profile first. Nothing is
     * left out as a duplicate; a category that no chosen profile has is no key. The first error of
     * the reader, the predicate or a profile ends it and is passed on.
     */
    CleanableDataMap cleanableData(const ProfilePredicate& shouldIncludeProfile) const;

    /** The bookmarks of the chosen profiles, profile after profile. Errors as above. */
    std::vector<Bookmark> bookmarks(const ProfilePredicate& shouldIncludeProfile) const;

protected:
    /** @{ */
    /** For derived classes: the base alone is never copied. */
    BrowserCleaner(const BrowserCleaner&) = default;
    BrowserCleaner(BrowserCleaner&&) = default;
    BrowserCleaner& operator=(const BrowserCleaner&) = default;
    BrowserCleaner& operator=(BrowserCleaner&&) = default;
    /** @} */
};

}  // namespace browsersweep
