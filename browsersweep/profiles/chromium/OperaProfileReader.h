#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/**
 * Lists the one profile of an Opera that keeps no list of profiles: its data folder itself. The
 * catalogue's Opera row uses the general reader; this one is for hosts that meet such a browser.
 */
class BROWSERSWEEP_EXPORT OperaProfileReader : public BrowserProfileReader {
public:
    /** Reads in this home. */
    explicit OperaProfileReader(Home home) : home_(std::move(home)) {}

    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
    }

    /** Always one nameless primary `ChromiumBasedProfile`. Reads no file and never fails. */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    Home home_;
};

}  // namespace browsersweep
