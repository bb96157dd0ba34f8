#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "browsersweep/Export.h"
#include "browsersweep/home/Home.h"
#include "browsersweep/profiles/BrowserProfileReader.h"
#include "browsersweep/profiles/firefox/IniFile.h"

namespace browsersweep {

/**
 * Lists the profiles of Firefox from its "profiles.ini". A missing file, or a directory in its
 * place, gives none. Whether a profile's folder exists is not examined.
 */
class BROWSERSWEEP_EXPORT FirefoxProfileReader : public BrowserProfileReader {
public:
    /** Reads in this home. */
    explicit FirefoxProfileReader(Home home) : home_(std::move(home)) {}

    /** What reaches its files. */
    const std::shared_ptr<const FileManager>& fileManager() const noexcept {
        return home_.fileManager();
    }
    /** Where its user's data lies. */
    const std::shared_ptr<const CurrentUserDirectoryProvider>& directoryProvider() const noexcept {
        return home_.directoryProvider();
    }

    /**
     * The sections named "Profile..." that have a "Name" and a "Path", in the order of the
     * sections' names. Throws `filesystem_error` where the file cannot be read and a
     * `DecodingError` where it is not UTF-8.
     */
    std::vector<std::shared_ptr<const BrowserProfile>> profiles() const override;

private:
    std::shared_ptr<const BrowserProfile> makeProfile(const IniFile::Section& section) const;

    Home home_;
};

}  // namespace browsersweep
