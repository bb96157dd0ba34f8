#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfileReader.h"

namespace browsersweep {

/** Lists Safari's profiles: always exactly one. */
class BROWSERSWEEP_EXPORT SafariProfileReader : public BrowserProfileReader {
public:
    /** Reads in this home. */
    explicit SafariProfileReader(Home home) : home_(std::move(home)) {}

    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
    }

    /** One `SafariProfile`, whether or not Safari has ever been run. Reads no file. */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    Home home_;
};

}  // namespace browsersweep
