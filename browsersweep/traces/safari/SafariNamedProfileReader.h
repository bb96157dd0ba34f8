#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Lists the profiles that were made in Safari 17 or later, beside the one that every user has. */
class BROWSERSWEEP_EXPORT SafariNamedProfileReader : public BrowserProfileReader {
public:
    /** Reads in this home. */
    explicit SafariNamedProfileReader(Home home) : home_(std::move(home)) {}

    /**
     * Those that "SafariTabs.db" lists, each a `SafariNamedProfile` with its title, and then those
     * that only have folders, which have none: what a profile that was deleted left. A database
     * that cannot be read knows no titles, and hides no folder. Changes no file. Throws
     * `filesystem_error` and `OperationCancelled`.
     */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    Home home_;
};

}  // namespace browsersweep
